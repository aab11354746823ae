#include "TestServer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace clockwell::server {

using std::chrono::milliseconds;
using SteadyClock = std::chrono::steady_clock;

namespace {

/// Sends `bytes` one by one, each `pause` after the other, until the server has had enough.
void drip(RawClient &client, std::string_view bytes, milliseconds pause)
{
    const auto start = SteadyClock::now();
    for (const char byte : bytes) {
        if (!client.send({&byte, 1}) || client.closesWithin(pause))
            break;
        if (SteadyClock::now() - start > std::chrono::seconds(15))
            break;
    }
}

} // namespace

TEST(HttpSlowClientTest, HeaderThatStopsHalfwayIsTimedOut)
{
    TestServer server(TestServer::echo, TestServer::quickOptions());
    const auto start = SteadyClock::now();
    RawClient client(server.port());
    const auto response = client.exchange("GET / HTTP/1.1\r\nHost: x\r\n");
    EXPECT_EQ(response.status, 408);
    EXPECT_EQ(response.body, R"({"statusCode":408,"error":"REQUEST_TIMEOUT",)"
                             R"("message":"The request took too long to arrive."})");
    EXPECT_GE(SteadyClock::now() - start, milliseconds(390));
    EXPECT_LT(SteadyClock::now() - start, std::chrono::seconds(10));
    EXPECT_TRUE(client.closesWithin(RawClient::patience));
}

TEST(HttpSlowClientTest, HeaderThatDripsIsTimedOutAllTheSame)
{
    TestServer server(TestServer::echo, TestServer::quickOptions());
    const auto start = SteadyClock::now();
    RawClient client(server.port());
    drip(client, get("/", "X: " + std::string(1000, 'a')), milliseconds(20));
    const auto time = SteadyClock::now() - start;
    EXPECT_GE(time, milliseconds(390));
    EXPECT_LT(time, std::chrono::seconds(10)) << "all of it takes 20 seconds";
    EXPECT_EQ(client.receive().status, 408);
}

TEST(HttpSlowClientTest, BodyThatStopsHalfwayIsTimedOut)
{
    TestServer server(TestServer::echo, TestServer::quickOptions());
    const auto start = SteadyClock::now();
    RawClient client(server.port());
    EXPECT_EQ(client.exchange("POST / HTTP/1.1\r\nHost: x\r\nContent-Length: 10\r\n\r\nhalf").status, 408);
    EXPECT_GE(SteadyClock::now() - start, milliseconds(590));
    EXPECT_TRUE(client.closesWithin(RawClient::patience));
}

TEST(HttpSlowClientTest, BodyThatDripsIsTimedOutAllTheSame)
{
    std::atomic<int> handled{0};
    const auto handler = [&handled](const Request &request) {
        ++handled;
        return TestServer::echo(request);
    };
    TestServer server(handler, TestServer::quickOptions());
    const auto start = SteadyClock::now();
    RawClient client(server.port());
    client.send("POST / HTTP/1.1\r\nHost: x\r\nContent-Length: 1000\r\n\r\n");
    drip(client, std::string(1000, 'b'), milliseconds(20));
    const auto time = SteadyClock::now() - start;
    EXPECT_GE(time, milliseconds(590));
    EXPECT_LT(time, std::chrono::seconds(10)) << "all of it takes 20 seconds";
    EXPECT_EQ(client.receive().status, 408);
    EXPECT_EQ(handled, 0) << "half a request reaches no handler";
}

TEST(HttpSlowClientTest, DeadlineOfTheSecondRequestStartsWithIt)
{
    HttpOptions options = TestServer::quickOptions();
    options.idleDeadline = std::chrono::seconds(20);
    TestServer server(TestServer::echo, options);
    RawClient client(server.port());
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(client.exchange(post("/", "a")).status, 200);
        std::this_thread::sleep_for(milliseconds(450)); // longer than the header deadline
    }
    EXPECT_EQ(client.exchange(get("/")).status, 200);
}

TEST(HttpSlowClientTest, SlowHandlerIsNotTheClientsFault)
{
    const auto handler = [](const Request &request) {
        std::this_thread::sleep_for(milliseconds(900)); // longer than any deadline for the client
        return TestServer::echo(request);
    };
    TestServer server(handler, TestServer::quickOptions());
    EXPECT_EQ(RawClient(server.port()).exchange(post("/", "a")).status, 200);
}

TEST(HttpSlowClientTest, ConnectionWithoutARequestIsClosedSilently)
{
    TestServer server(TestServer::echo, TestServer::quickOptions());
    const auto start = SteadyClock::now();
    RawClient client(server.port());
    EXPECT_TRUE(client.closesWithin(RawClient::patience));
    EXPECT_GE(SteadyClock::now() - start, milliseconds(390));
}

TEST(HttpSlowClientTest, IdleKeptAliveConnectionIsClosedSilently)
{
    TestServer server(TestServer::echo, TestServer::quickOptions());
    RawClient client(server.port());
    const auto start = SteadyClock::now();
    ASSERT_EQ(client.exchange(get("/")).status, 200);
    EXPECT_TRUE(client.closesWithin(RawClient::patience));
    EXPECT_GE(SteadyClock::now() - start, milliseconds(390));
}

TEST(HttpSlowClientTest, HalfSentBodyAtTheEndOfTheStreamIsABadRequest)
{
    TestServer server(TestServer::echo, TestServer::quickOptions());
    RawClient client(server.port());
    client.send("POST / HTTP/1.1\r\nHost: x\r\nContent-Length: 10\r\n\r\nhalf");
    client.endOutput();
    const auto response = client.receive();
    EXPECT_EQ(response.status, 400);
    EXPECT_EQ(response.body, R"({"statusCode":400,"error":"BAD_REQUEST",)"
                             R"("message":"The request ended before it was complete."})");
}

TEST(HttpSlowClientTest, ResetsAtEveryStageLeaveTheServerServing)
{
    TestServer server([](const Request &) { return Response{200, std::string(500'000, 'r'), "a/b", {}}; });
    const std::string request = post("/", "0123456789");
    for (std::size_t sent = 0; sent <= request.size(); ++sent) {
        RawClient client(server.port());
        client.send(std::string_view(request).substr(0, sent));
        client.reset();
    }
    EXPECT_EQ(RawClient(server.port()).exchange(request).status, 200);
}

TEST(HttpSlowClientTest, ReaderThatDoesNotReadIsCutOff)
{
    constexpr milliseconds deadline(2000);
    HttpOptions options = TestServer::usualOptions();
    options.writeDeadline = deadline;
    options.maxConnections = 1;
    std::atomic<int> begun{0};
    TestServer server(
        [&begun](const Request &) {
            ++begun;
            return Response{200, std::string(20'000'000, 'r'), "a/b", {}};
        },
        options);
    RawClient client(server.port(), 4096);
    const auto start = SteadyClock::now();
    client.send(get("/"));
    ASSERT_TRUE(eventually([&begun] { return begun == 1; })); // from now on it has the one place
    // That is free again only when the slow reader was thrown out.
    EXPECT_EQ(RawClient(server.port()).exchange(get("/a")).status, 503);
    EXPECT_TRUE(eventually([&server] { return RawClient(server.port()).exchange(get("/a")).status == 200; }));
    EXPECT_GE(SteadyClock::now() - start, deadline - milliseconds(10));
    EXPECT_LT(client.receiveAll().size(), 20'000'000U);
}

TEST(HttpSlowClientTest, ReaderThatReadsGetsALargeAnswerWhole)
{
    TestServer server([](const Request &) { return Response{200, std::string(20'000'000, 'r'), "a/b", {}}; });
    EXPECT_EQ(RawClient(server.port()).exchange(get("/")).body.size(), 20'000'000U);
}

TEST(HttpSlowClientTest, ManyDrippingConnectionsDoNotHinderOthers)
{
    HttpOptions options = TestServer::usualOptions();
    options.headDeadline = std::chrono::minutes(1); // they stay for the whole test
    TestServer server(TestServer::echo, options);
    std::vector<std::unique_ptr<RawClient>> dripping;
    for (int i = 0; i < 200; ++i) {
        dripping.push_back(std::make_unique<RawClient>(server.port()));
        dripping.back()->send("GET / HTTP/1.1\r\nX: ");
    }
    const auto start = SteadyClock::now();
    EXPECT_EQ(RawClient(server.port()).exchange(get("/")).status, 200);
    EXPECT_LT(SteadyClock::now() - start, std::chrono::seconds(10));
}

} // namespace clockwell::server
