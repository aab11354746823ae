#include "TestServer.h"
#include "tests/server/Contains.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <vector>

namespace clockwell::server {

using test::contains;

namespace {

constexpr const char *proxy = "127.0.0.9";
constexpr const char *stranger = "127.0.0.1";

HttpOptions behindProxy()
{
    HttpOptions options = TestServer::usualOptions();
    options.trustedProxies = {"127.0.0.8/31"};
    return options;
}

/// An address may fail so often at once, and then once a minute.
HttpOptions behindProxyWithFailures(unsigned atOnce)
{
    HttpOptions options = behindProxy();
    options.failuresPerMinute = 1;
    options.failureBurst = atOnce;
    return options;
}

Response notFound(const Request & /*request*/)
{
    return {404, "{}", "application/json", {}};
}

std::string forwardedGet(const std::string &list, const std::string &target = "/")
{
    return get(target, "X-Forwarded-For: " + list + "\r\n");
}

/// Whom the server took the sender of a request for.
std::string seenAs(const TestServer &server, const std::string &request, const char *from)
{
    RawClient client(server.port(), 0, from);
    const std::string body = client.exchange(request).body;
    const auto begin = body.find("\nfrom=") + 6;
    return body.substr(begin, body.find('\n', begin) - begin);
}

bool hasAnswer(const std::unique_ptr<RawClient> &client)
{
    char byte = 0;
    return ::recv(client->descriptor(), &byte, 1, MSG_PEEK | MSG_DONTWAIT) > 0;
}

} // namespace

TEST(HttpProxyTest, OnlyTrustedProxiesAreBelieved)
{
    const TestServer server(TestServer::echo, behindProxy());
    EXPECT_EQ(seenAs(server, forwardedGet("192.0.2.1"), proxy), "192.0.2.1");
    EXPECT_EQ(seenAs(server, forwardedGet("192.0.2.1"), stranger), stranger);
    EXPECT_EQ(seenAs(server, get("/"), proxy), proxy);
    const TestServer direct;
    EXPECT_EQ(seenAs(direct, forwardedGet("192.0.2.1"), proxy), proxy) << "nobody is believed by default";
}

TEST(HttpProxyTest, LinesOfTheHeaderAreOneList)
{
    const TestServer server(TestServer::echo, behindProxy());
    const std::string lines = "X-Forwarded-For: 203.0.113.1\r\nx-forwarded-for: 192.0.2.1, 127.0.0.8\r\n"
                              "X-FORWARDED-FOR:\r\nX-Forwarded-For: 127.0.0.9\r\n";
    EXPECT_EQ(seenAs(server, get("/", lines), proxy), "192.0.2.1");
}

TEST(HttpProxyTest, EachRequestOfAConnectionHasItsOwnClient)
{
    const TestServer server(TestServer::echo, behindProxy());
    RawClient client(server.port(), 0, proxy);
    EXPECT_TRUE(contains(client.exchange(forwardedGet("192.0.2.1")).body, "from=192.0.2.1\n"));
    EXPECT_TRUE(contains(client.exchange(forwardedGet("2001:db8::1")).body, "from=2001:db8::1\n"));
    EXPECT_TRUE(contains(client.exchange(get("/")).body, std::string("from=") + proxy + "\n"));
}

TEST(HttpProxyTest, FieldInTheTrailerOfABodyNamesNobody)
{
    const TestServer server(TestServer::echo, behindProxy());
    const std::string request = "POST / HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: chunked\r\n\r\n"
                                "1\r\na\r\n0\r\nX-Forwarded-For: 192.0.2.1\r\n\r\n";
    EXPECT_EQ(seenAs(server, request, proxy), proxy);
}

TEST(HttpProxyTest, HeaderMayBeAsLongAsAnyOther)
{
    const TestServer server(TestServer::echo, behindProxy());
    std::string list;
    while (list.size() < 15'000)
        list += "203.0.113.1, ";
    EXPECT_EQ(seenAs(server, forwardedGet(list + "192.0.2.1"), proxy), "192.0.2.1");
    EXPECT_EQ(seenAs(server, forwardedGet(std::string(15'000, ',')), proxy), proxy);
    RawClient client(server.port(), 0, proxy);
    EXPECT_EQ(client.exchange(forwardedGet(list + list)).status, 431);
}

TEST(HttpProxyTest, FloodOfOneClientDoesNotThrottleTheOthers)
{
    const TestServer server(notFound, behindProxyWithFailures(3));
    RawClient client(server.port(), 0, proxy);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(client.exchange(forwardedGet("192.0.2.1")).status, 404);
    EXPECT_EQ(client.exchange(forwardedGet("192.0.2.1")).status, 429);
    EXPECT_EQ(client.exchange(forwardedGet("203.0.113.5, 192.0.2.1")).status, 429)
        << "what the client wrote itself changes nothing";
    EXPECT_EQ(client.exchange(forwardedGet("192.0.2.2")).status, 404);
    EXPECT_EQ(client.exchange(get("/")).status, 404);
}

TEST(HttpProxyTest, HeaderOfAStrangerDoesNotChangeItsLimits)
{
    const TestServer server(notFound, behindProxyWithFailures(3));
    RawClient client(server.port(), 0, stranger);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(client.exchange(forwardedGet("192.0.2." + std::to_string(i))).status, 404);
    EXPECT_EQ(client.exchange(forwardedGet("192.0.2.9")).status, 429);
    RawClient victim(server.port(), 0, proxy);
    EXPECT_EQ(victim.exchange(forwardedGet("192.0.2.0")).status, 404) << "nobody pays for that";
}

TEST(HttpProxyTest, UnreadableRequestsAreNobodysFailures)
{
    const TestServer server(notFound, behindProxyWithFailures(2));
    for (int i = 0; i < 5; ++i) {
        RawClient client(server.port(), 0, proxy);
        EXPECT_EQ(client.exchange("NONSENSE\r\n\r\n").status, 400);
    }
    RawClient client(server.port(), 0, proxy);
    EXPECT_EQ(client.exchange(get("/")).status, 404);
}

TEST(HttpProxyTest, ProxyMayHaveAllConnections)
{
    HttpOptions options = behindProxy();
    options.maxConnections = 6;
    options.connectionsPerNetwork = 2;
    const TestServer server(TestServer::echo, options);
    std::vector<std::unique_ptr<RawClient>> clients;
    for (int i = 0; i < 5; ++i) {
        clients.push_back(std::make_unique<RawClient>(server.port(), 0, proxy));
        EXPECT_EQ(clients.back()->exchange(get("/")).status, 200);
    }
    for (const auto &client : clients)
        EXPECT_EQ(client->exchange(get("/")).status, 200) << "none gave way";
    RawClient first(server.port(), 0, stranger), second(server.port(), 0, stranger),
        third(server.port(), 0, stranger);
    EXPECT_EQ(third.exchange(get("/")).status, 200);
    EXPECT_TRUE(first.closesWithin(RawClient::patience)) << "the limit by address holds for others";
}

TEST(HttpProxyTest, QueueForPasswordsIsFairToClientsOfOneProxy)
{
    HttpOptions options = behindProxy();
    options.passwordThreads = 1;
    options.passwordsPerNetwork = 2;
    Gate gate;
    std::atomic<int> begun{0};
    const TestServer server(
        [&](const Request &) {
            ++begun;
            gate.pass();
            return Response{};
        },
        options, TestServer::byPath());
    RawClient running(server.port(), 0, proxy), other(server.port(), 0, proxy);
    const auto ask = [](const std::string &client) {
        return post("/password", "", "X-Forwarded-For: " + client + "\r\n");
    };
    running.send(ask("192.0.2.1"));
    ASSERT_TRUE(eventually([&] { return begun == 1; }));
    std::vector<std::unique_ptr<RawClient>> more;
    for (int i = 0; i < 3; ++i) {
        more.push_back(std::make_unique<RawClient>(server.port(), 0, proxy));
        more.back()->send(ask("192.0.2.1"));
    }
    const auto answered = [&] { return std::ranges::count_if(more, hasAnswer); };
    EXPECT_TRUE(eventually([&] { return answered() == 1; })) << "its share is taken";
    other.send(ask("192.0.2.2"));
    gate.open();
    EXPECT_EQ(other.receive().status, 200);
    EXPECT_EQ(running.receive().status, 200);
    const auto refused = [](const auto &client) { return client->receive().status == 503; };
    EXPECT_EQ(std::ranges::count_if(more, refused), 1);
}

} // namespace clockwell::server
