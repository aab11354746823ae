#include "TestServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace clockwell::server {

using std::chrono::milliseconds;

namespace {

void expectError(const RawResponse &response, int status, const std::string &code)
{
    EXPECT_EQ(response.status, status);
    EXPECT_EQ(response.headers.count("content-type") ? response.headers.at("content-type") : "",
              "application/json");
    EXPECT_EQ(response.body.find("{\"statusCode\":" + std::to_string(status) + ",\"error\":\"" + code +
                                 "\",\"message\":\""),
              0U)
        << response.body;
}

} // namespace

TEST(HttpLimitsTest, BodyOverTheLimitIsRefusedByItsLengthAndTheConnectionClosed)
{
    TestServer server;
    RawClient client(server.port());
    expectError(client.exchange("POST / HTTP/1.1\r\nHost: x\r\nContent-Length: 1048577\r\n\r\n"), 413,
                "PAYLOAD_TOO_LARGE");
    EXPECT_TRUE(client.closesWithin(milliseconds(1000)));
}

TEST(HttpLimitsTest, ClientThatGoesOnSendingATooLargeBodyStillReadsTheRefusal)
{
    TestServer server;
    RawClient client(server.port());
    client.send("POST / HTTP/1.1\r\nHost: x\r\nContent-Length: 3000000\r\n\r\n");
    client.send(std::string(3'000'000, 'b'));
    expectError(client.receive(), 413, "PAYLOAD_TOO_LARGE");
}

TEST(HttpLimitsTest, ChunkedBodyOverTheLimitIsRefused)
{
    TestServer server;
    RawClient client(server.port());
    client.send("POST / HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: chunked\r\n\r\n");
    const std::string chunk = "10000\r\n" + std::string(0x10000, 'b') + "\r\n";
    for (int i = 0; i < 17; ++i)
        client.send(chunk);
    expectError(client.receive(), 413, "PAYLOAD_TOO_LARGE");
}

TEST(HttpLimitsTest, HeaderOverTheLimitIsRefused)
{
    TestServer server;
    expectError(RawClient(server.port()).exchange(get("/", "X: " + std::string(17'000, 'a') + "\r\n")), 431,
                "HEADER_TOO_LARGE");
    expectError(RawClient(server.port()).exchange(get("/" + std::string(17'000, 'a'))), 431,
                "HEADER_TOO_LARGE");
}

TEST(HttpLimitsTest, HeaderLimitHoldsForEachRequestOfAConnection)
{
    TestServer server;
    RawClient client(server.port());
    const std::string large = get("/", "X: " + std::string(15'000, 'a') + "\r\n");
    client.send(large + large + large);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(client.receive().status, 200);
}

TEST(HttpLimitsTest, ConnectionsOverTheLimitGetAnAnswerAndOthersGoOn)
{
    HttpOptions options = TestServer::quickOptions();
    options.maxConnections = 3;
    options.idleDeadline = std::chrono::seconds(10);
    TestServer server(TestServer::echo, options);
    std::vector<std::unique_ptr<RawClient>> open;
    for (int i = 0; i < 3; ++i) {
        open.push_back(std::make_unique<RawClient>(server.port()));
        ASSERT_EQ(open.back()->exchange(get("/")).status, 200);
    }
    RawClient surplus(server.port());
    const auto response = surplus.exchange(get("/"));
    expectError(response, 503, "UNAVAILABLE");
    EXPECT_EQ(response.headers.at("retry-after"), "1");
    EXPECT_TRUE(surplus.closesWithin(milliseconds(1000)));
    EXPECT_EQ(open.front()->exchange(get("/")).status, 200);
    open.pop_back();
    EXPECT_TRUE(eventually([&server] { return RawClient(server.port()).exchange(get("/")).status == 200; }))
        << "a freed place can be taken";
}

TEST(HttpLimitsTest, FloodOfConnectionsIsClosedAndTheServerLives)
{
    HttpOptions options = TestServer::quickOptions();
    options.maxConnections = 2;
    TestServer server(TestServer::echo, options);
    {
        std::vector<std::unique_ptr<RawClient>> flood;
        for (int i = 0; i < 200; ++i)
            flood.push_back(std::make_unique<RawClient>(server.port()));
    }
    EXPECT_TRUE(eventually([&server] { return RawClient(server.port()).exchange(get("/")).status == 200; }));
}

TEST(HttpLimitsTest, AddressThatAsksTooOftenIsToldWhenToComeBack)
{
    HttpOptions options = TestServer::quickOptions();
    options.requestsPerMinute = 20;
    options.requestBurst = 5;
    TestServer server(TestServer::echo, options);
    RawClient client(server.port());
    for (int i = 0; i < 5; ++i)
        ASSERT_EQ(client.exchange(get("/")).status, 200);
    const auto response = client.exchange(get("/"));
    expectError(response, 429, "TOO_MANY_REQUESTS");
    EXPECT_EQ(response.headers.at("retry-after"), "3");
    EXPECT_EQ(response.headers.count("connection"), 0U) << "without a body the connection can go on";
    EXPECT_EQ(RawClient(server.port()).exchange(get("/")).status, 429)
        << "it counts addresses, not connections";
    EXPECT_EQ(client.exchange(get("/health")).status, 200) << "the health check is not counted";
}

TEST(HttpLimitsTest, ThrottledRequestWithABodyEndsTheConnection)
{
    HttpOptions options = TestServer::quickOptions();
    options.requestsPerMinute = 1;
    options.requestBurst = 1;
    TestServer server(TestServer::echo, options);
    RawClient client(server.port());
    client.exchange(get("/"));
    const auto response = client.exchange(post("/", get("/smuggled")));
    expectError(response, 429, "TOO_MANY_REQUESTS");
    EXPECT_EQ(response.headers.at("connection"), "close");
    EXPECT_TRUE(client.closesWithin(milliseconds(1000)));
}

TEST(HttpLimitsTest, DefaultThrottleLetsALocalTestSuitePass)
{
    TestServer server;
    RawClient client(server.port());
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(client.exchange(get("/")).status, 200);
}

TEST(HttpLimitsTest, FullWorkerQueueIsAnsweredAtOnceAndTheWaitingOnesLater)
{
    Gate gate;
    HttpOptions options = TestServer::quickOptions();
    options.workerThreads = 2;
    options.workerQueueLimit = 1;
    std::atomic<int> running{0};
    TestServer server(
        [&gate, &running](const Request &request) {
            ++running;
            gate.pass();
            return TestServer::echo(request);
        },
        options);
    std::vector<std::unique_ptr<RawClient>> clients;
    for (int i = 0; i < 4; ++i)
        clients.push_back(std::make_unique<RawClient>(server.port()));
    clients[0]->send(get("/"));
    clients[1]->send(get("/"));
    ASSERT_TRUE(eventually([&running] { return running == 2; }));
    // Two more: one finds the only place of the queue, the other none; which is which is up to the system.
    clients[2]->send(get("/"));
    clients[3]->send(get("/"));
    EXPECT_EQ(RawClient(server.port()).exchange(get("/health")).status, 200) << "needs no worker";
    gate.open();
    std::vector<int> statuses;
    for (const auto &client : clients)
        statuses.push_back(client->receive().status);
    std::sort(statuses.begin(), statuses.end());
    EXPECT_EQ(statuses, (std::vector<int>{200, 200, 200, 503}));
}

TEST(HttpLimitsTest, FullWorkerQueueSaysWhenToComeBackAndKeepsTheConnection)
{
    Gate gate;
    HttpOptions options = TestServer::quickOptions();
    options.workerThreads = 1;
    options.workerQueueLimit = 0;
    std::atomic<int> running{0};
    TestServer server(
        [&gate, &running](const Request &request) {
            ++running;
            gate.pass();
            return TestServer::echo(request);
        },
        options);
    RawClient first(server.port()), second(server.port());
    first.send(get("/"));
    ASSERT_TRUE(eventually([&running] { return running == 1; }));
    const auto response = second.exchange(post("/", "body"));
    expectError(response, 503, "UNAVAILABLE");
    EXPECT_EQ(response.headers.at("retry-after"), "1");
    gate.open();
    EXPECT_EQ(first.receive().status, 200);
    EXPECT_TRUE(eventually([&second] { return second.exchange(get("/")).status == 200; }));
}

TEST(HttpLimitsTest, HandlersExceptionBecomesAGeneralAnswerAndTheConnectionGoesOn)
{
    TestServer server([](const Request &request) -> Response {
        if (request.path == "/std")
            throw std::runtime_error("SELECT password FROM employee");
        if (request.path == "/other")
            throw 42;
        return TestServer::echo(request);
    });
    RawClient client(server.port());
    for (const char *path : {"/std", "/other"}) {
        const auto response = client.exchange(get(path));
        EXPECT_EQ(response.status, 500);
        EXPECT_EQ(response.body,
                  R"({"statusCode":500,"error":"INTERNAL","message":"Something went wrong on the server."})");
    }
    EXPECT_EQ(client.exchange(get("/")).status, 200);
    const std::string log = server.log();
    EXPECT_NE(log.find("what=\"SELECT password FROM employee\""), std::string::npos);
    EXPECT_NE(log.find("what=\"unknown exception\""), std::string::npos);
}

TEST(HttpLimitsTest, AnswerThatCannotBeSentBecomesTheGeneralOne)
{
    TestServer server([](const Request &request) -> Response {
        if (request.path == "/split")
            return {200, "{}", "application/json", {{"X", "a\r\nSet-Cookie: stolen"}}};
        return {99, "{}", "application/json", {}};
    });
    RawClient client(server.port());
    EXPECT_EQ(client.exchange(get("/split")).status, 500);
    EXPECT_EQ(client.exchange(get("/status")).status, 500);
    EXPECT_NE(server.log().find("path=/split status=500"), std::string::npos) << "the log has what was sent";
}

} // namespace clockwell::server
