#include "TestServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <spdlog/spdlog.h>

#include <stdexcept>
#include <thread>
#include <vector>

namespace clockwell::server {

TEST(HttpServerTest, HandlerGetsTheRequestInParts)
{
    TestServer server;
    RawClient client(server.port());
    const auto response = client.exchange(
        post("/api/auth/login?x=%C3%A4&y", "{}", "Authorization: Bearer abc\r\nContent-Type: a/b\r\n"));
    EXPECT_EQ(response.status, 200);
    EXPECT_EQ(response.body, "method=POST\npath=/api/auth/login\nquery x=\xC3\xA4\nquery y=\n"
                             "authorization=Bearer abc\ntype=a/b\nbody={}\nfrom=127.0.0.1\n");
}

TEST(HttpServerTest, ResponsesCarryTheFixedHeadersAndNoServerName)
{
    TestServer server([](const Request &) {
        return Response{201, "[]", "application/json", {{"X-Extra", "1"}}};
    });
    const auto response = RawClient(server.port()).exchange(get("/"));
    EXPECT_EQ(response.status, 201);
    EXPECT_THAT(response.headers.at("date"),
                testing::MatchesRegex("[A-Z][a-z]{2}, [0-9]{2} [A-Z][a-z]{2} [0-9]{4} [0-9:]{8} GMT"));
    EXPECT_EQ(response.headers.at("cache-control"), "no-store");
    EXPECT_EQ(response.headers.at("x-content-type-options"), "nosniff");
    EXPECT_EQ(response.headers.at("content-type"), "application/json");
    EXPECT_EQ(response.headers.at("x-extra"), "1");
    EXPECT_EQ(response.headers.count("server"), 0U);
}

TEST(HttpServerTest, HealthIsAnsweredWithoutTheHandler)
{
    TestServer server([](const Request &) -> Response { throw std::logic_error("not for the handler"); });
    RawClient client(server.port());
    EXPECT_EQ(client.exchange(get("/health")).body, R"({"status":"ok"})");
    client.send("HEAD /health HTTP/1.1\r\nHost: x\r\n\r\n");
    const auto head = client.receive(true);
    EXPECT_EQ(head.status, 200);
    EXPECT_EQ(head.headers.at("content-length"), "15");
    EXPECT_EQ(client.exchange(post("/health", "")).status, 500) << "only GET is answered here";
}

TEST(HttpServerTest, HeadIsGetWithoutTheBody)
{
    TestServer server;
    RawClient client(server.port());
    client.send("HEAD /a HTTP/1.1\r\nHost: x\r\n\r\n" + get("/b"));
    const auto head = client.receive(true);
    EXPECT_EQ(head.status, 200);
    EXPECT_GT(std::stoul(head.headers.at("content-length")), 0U);
    EXPECT_NE(client.receive().body.find("path=/b\n"), std::string::npos) << "no body bytes in between";
}

TEST(HttpServerTest, OptionsTellsTheMethods)
{
    TestServer server;
    RawClient client(server.port());
    for (const char *target : {"*", "/api/auth/login"}) {
        const auto response =
            client.exchange("OPTIONS " + std::string(target) + " HTTP/1.1\r\nHost: x\r\n\r\n");
        EXPECT_EQ(response.status, 204);
        EXPECT_EQ(response.headers.at("allow"), "GET, HEAD, POST, OPTIONS");
        EXPECT_EQ(response.headers.count("content-length"), 0U);
    }
}

TEST(HttpServerTest, ConnectionIsKeptAliveBetweenRequests)
{
    TestServer server;
    RawClient client(server.port());
    for (int i = 0; i < 50; ++i)
        ASSERT_NE(
            client.exchange(post("/a", std::to_string(i))).body.find("body=" + std::to_string(i) + "\n"),
            std::string::npos);
}

TEST(HttpServerTest, ConnectionCloseIsHonouredAndSaid)
{
    TestServer server;
    RawClient client(server.port());
    const auto response = client.exchange(get("/", "Connection: close\r\n"));
    EXPECT_EQ(response.status, 200);
    EXPECT_EQ(response.headers.at("connection"), "close");
    EXPECT_TRUE(client.closesWithin(RawClient::patience));
}

TEST(HttpServerTest, UnansweredRequestEndsTheConnectionWithoutAByte)
{
    TestServer server([](const Request &request) {
        Response response = TestServer::echo(request);
        response.unanswered = request.path == "/silent";
        return response;
    });
    RawClient client(server.port());
    ASSERT_EQ(client.exchange(get("/")).status, 200);
    client.send(get("/silent") + get("/after"));
    EXPECT_EQ(client.receiveAll(), "");
    EXPECT_EQ(RawClient(server.port()).exchange(get("/")).status, 200);
    const std::string log = server.log();
    EXPECT_NE(log.find("path=/silent status=0 "), std::string::npos) << log;
    EXPECT_EQ(log.find("path=/after"), std::string::npos) << log;
}

TEST(HttpServerTest, Http10ClosesUnlessItAsksNotTo)
{
    TestServer server;
    RawClient plain(server.port());
    EXPECT_EQ(plain.exchange("GET / HTTP/1.0\r\n\r\n").headers.at("connection"), "close");
    EXPECT_TRUE(plain.closesWithin(RawClient::patience));
    RawClient kept(server.port());
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(kept.exchange("GET / HTTP/1.0\r\nConnection: keep-alive\r\n\r\n").headers.at("connection"),
                  "keep-alive");
}

TEST(HttpServerTest, PipelinedRequestsAreAnsweredInTheirOrder)
{
    // The first takes longest, so that answers in order of completion would be found out.
    TestServer server([](const Request &request) {
        std::this_thread::sleep_for(std::chrono::milliseconds(request.path == "/0" ? 60 : 0));
        return Response{200, request.path + request.body, "text/plain", {}};
    });
    RawClient client(server.port());
    std::string bytes;
    for (int i = 0; i < 20; ++i)
        bytes += i % 2 == 0 ? get("/" + std::to_string(i)) : post("/" + std::to_string(i), "b");
    client.send(bytes);
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(client.receive().body, "/" + std::to_string(i) + (i % 2 == 0 ? "" : "b"));
}

TEST(HttpServerTest, ContinueIsSentBeforeTheBodyIsWaitedFor)
{
    TestServer server;
    RawClient client(server.port());
    client.send("POST /a HTTP/1.1\r\nHost: x\r\nContent-Length: 3\r\nExpect: 100-continue\r\n\r\n");
    EXPECT_EQ(client.receive().status, 100);
    client.send("abc");
    EXPECT_NE(client.receive().body.find("body=abc\n"), std::string::npos);
}

TEST(HttpServerTest, TooLargeBodyIsRefusedInsteadOfContinued)
{
    TestServer server;
    RawClient client(server.port());
    const auto response = client.exchange(
        "POST /a HTTP/1.1\r\nHost: x\r\nContent-Length: 9999999\r\nExpect: 100-continue\r\n\r\n");
    EXPECT_EQ(response.status, 413);
}

TEST(HttpServerTest, BinaryBodiesArriveUnchanged)
{
    std::string body;
    for (int i = 0; i < 300'000; ++i)
        body.push_back(static_cast<char>(i * 7 + i / 256));
    HttpOptions options = TestServer::usualOptions();
    options.bodyLimit = body.size();
    TestServer server([](const Request &request) { return Response{200, request.body, "a/b", {}}; }, options);
    RawClient client(server.port());
    EXPECT_TRUE(client.exchange(post("/", body)).body == body);
}

TEST(HttpServerTest, ManyConnectionsInParallelAreAllServed)
{
    TestServer server;
    constexpr int threads = 8, connectionsEach = 25, requestsEach = 4;
    std::atomic<int> answered{0};
    std::vector<std::thread> clients;
    for (int t = 0; t < threads; ++t) {
        clients.emplace_back([&server, &answered] {
            std::vector<std::unique_ptr<RawClient>> open;
            for (int i = 0; i < connectionsEach; ++i)
                open.push_back(std::make_unique<RawClient>(server.port()));
            for (int round = 0; round < requestsEach; ++round)
                for (const auto &client : open)
                    answered += client->exchange(get("/a")).status == 200 ? 1 : 0;
        });
    }
    for (auto &client : clients)
        client.join();
    EXPECT_EQ(answered, threads * connectionsEach * requestsEach);
}

TEST(HttpServerTest, PortInUseIsToldInClearWords)
{
    TestServer first;
    HttpOptions options;
    options.port = first.port();
    HttpServer second(options, TestServer::echo);
    try {
        second.start();
        FAIL() << "two servers on one port";
    } catch (const std::runtime_error &error) {
        EXPECT_EQ(error.what(), "Cannot listen on 127.0.0.1 port " + std::to_string(first.port()) +
                                    ": Address already in use");
    }
    EXPECT_EQ(second.port(), 0);
}

TEST(HttpServerTest, AddressMustBeAnAddress)
{
    HttpOptions options;
    options.address = "localhost";
    HttpServer server(options, TestServer::echo);
    EXPECT_THROW(server.start(), std::runtime_error);
}

TEST(HttpServerTest, PortCanBeTakenAgainAfterStop)
{
    HttpOptions options = TestServer::usualOptions();
    {
        TestServer server;
        options.port = server.port();
        EXPECT_EQ(RawClient(server.port()).exchange(get("/")).status, 200);
    }
    TestServer again(TestServer::echo, options);
    EXPECT_EQ(RawClient(options.port).exchange(get("/")).status, 200);
}

namespace {

std::vector<std::string> requestIds(const std::string &log)
{
    const std::string key = " id=";
    std::vector<std::string> ids;
    for (std::size_t at = log.find(key); at != std::string::npos; at = log.find(key, at + 1))
        ids.push_back(log.substr(at + key.size(), log.find(' ', at + 1) - at - key.size()));
    return ids;
}

} // namespace

TEST(HttpServerTest, LogNamesTheRequestAndNoSecret)
{
    TestServer server([](const Request &request) -> Response {
        if (request.path == "/throws")
            throw std::runtime_error("database is locked");
        return {200, R"({"accessToken":"SECRET-reply"})", "application/json", {{"X-Token", "SECRET-header"}}};
    });
    RawClient client(server.port());
    client.exchange(post("/api/auth/login?lat=SECRET-query&SECRET-key", R"({"password":"SECRET-body"})",
                         "Authorization: Bearer SECRET-bearer\r\nCookie: SECRET-cookie\r\n"));
    client.exchange(get("/throws?q=SECRET-query"));
    client.exchange(get("/%zz?q=SECRET-query", "Authorization: Bearer SECRET-bearer\r\n"));
    const std::string log = server.log();
    EXPECT_EQ(log.find("SECRET"), std::string::npos) << log;
    EXPECT_EQ(log.find("127.0.0.1"), std::string::npos) << log;
    const auto line = [](const std::string &request, int status) {
        return "info event=request id=[^ ]+ " + request + " status=" + std::to_string(status) +
               " durationMs=[0-9]+[.][0-9]{3} bytes=[0-9]+\n";
    };
    EXPECT_THAT(log,
                testing::MatchesRegex(line("method=POST path=/api/auth/login", 200) +
                                      "error event=handlerFailed id=[^ ]+ what=\"database is locked\"\n" +
                                      line("method=GET path=/throws", 500) + line("method=GET path=-", 400)));
    const auto ids = requestIds(log);
    ASSERT_EQ(ids.size(), 4U);
    EXPECT_NE(ids[0], ids[1]);
    EXPECT_EQ(ids[1], ids[2]) << "the failure can be found from its request";
}

} // namespace clockwell::server
