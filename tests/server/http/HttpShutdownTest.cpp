#include "TestServer.h"
#include "server/http/StopSignal.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <system_error>
#include <thread>

namespace clockwell::server {

using std::chrono::milliseconds;
using SteadyClock = std::chrono::steady_clock;

namespace {

Handler slowHandler(milliseconds time, std::atomic<int> &running)
{
    return [time, &running](const Request &request) {
        ++running;
        std::this_thread::sleep_for(time);
        return TestServer::echo(request);
    };
}

} // namespace

TEST(HttpShutdownTest, RequestInFlightIsAnsweredAndItsConnectionClosed)
{
    std::atomic<int> running{0};
    TestServer server(slowHandler(milliseconds(300), running));
    RawClient client(server.port());
    client.send(get("/a") + get("/too-late"));
    ASSERT_TRUE(eventually([&running] { return running == 1; }));
    std::thread stopping([&server] { server.server().stop(); });
    const auto response = client.receive();
    EXPECT_EQ(response.status, 200);
    EXPECT_EQ(response.headers.at("connection"), "close");
    EXPECT_TRUE(client.closesWithin(RawClient::patience)) << "what was sent ahead is not begun";
    stopping.join();
    EXPECT_EQ(running, 1);
}

TEST(HttpShutdownTest, HalfReceivedRequestMayFinish)
{
    TestServer server;
    RawClient client(server.port());
    client.send("POST / HTTP/1.1\r\nHost: x\r\nContent-Length: 4\r\n\r\nab");
    // Answered by the same thread: what was sent before has been read by then.
    EXPECT_EQ(RawClient(server.port()).exchange(get("/health")).status, 200);
    std::thread stopping([&server] { server.server().stop(); });
    std::this_thread::sleep_for(milliseconds(50));
    client.send("cd");
    EXPECT_NE(client.receive().body.find("body=abcd\n"), std::string::npos);
    stopping.join();
}

TEST(HttpShutdownTest, IdleConnectionsDoNotDelayIt)
{
    HttpOptions options = TestServer::usualOptions();
    options.idleDeadline = options.headDeadline = options.stopDeadline = std::chrono::minutes(1);
    TestServer server(TestServer::echo, options);
    RawClient used(server.port()), unused(server.port());
    used.exchange(get("/"));
    const auto start = SteadyClock::now();
    std::thread stopping([&server] { server.server().stop(); });
    EXPECT_TRUE(used.closesWithin(RawClient::patience));
    EXPECT_TRUE(unused.closesWithin(RawClient::patience));
    stopping.join();
    EXPECT_LT(SteadyClock::now() - start, std::chrono::seconds(30));
}

TEST(HttpShutdownTest, NewConnectionsAreRefusedFromTheStart)
{
    std::atomic<int> running{0};
    TestServer server(slowHandler(milliseconds(400), running));
    const std::uint16_t port = server.port();
    RawClient client(port);
    client.send(get("/"));
    ASSERT_TRUE(eventually([&running] { return running == 1; }));
    std::thread stopping([&server] { server.server().stop(); });
    EXPECT_TRUE(eventually([port] {
        try {
            RawClient late(port);
            return false;
        } catch (const std::system_error &) {
            return true;
        }
    }));
    EXPECT_EQ(client.receive().status, 200) << "and the one in flight goes on";
    stopping.join();
}

TEST(HttpShutdownTest, RequestsBeyondTheStopDeadlineAreCutOff)
{
    std::atomic<int> running{0};
    HttpOptions options = TestServer::usualOptions();
    options.stopDeadline = milliseconds(100);
    options.signedInThreads = 1;
    constexpr milliseconds handling(4000);
    TestServer server(slowHandler(handling, running), options);
    RawClient first(server.port()), queued(server.port());
    first.send(get("/"));
    ASSERT_TRUE(eventually([&running] { return running == 1; }));
    queued.send(get("/"));
    std::this_thread::sleep_for(milliseconds(50));
    const auto start = SteadyClock::now();
    std::thread stopping([&server] { server.server().stop(); });
    EXPECT_TRUE(first.closesWithin(handling));
    EXPECT_TRUE(queued.closesWithin(handling));
    EXPECT_LT(SteadyClock::now() - start, handling - milliseconds(500));
    stopping.join();
    EXPECT_EQ(running, 1) << "the queued one is not begun any more";
    EXPECT_NE(server.log().find("event=stopDeadline"), std::string::npos);
}

TEST(HttpShutdownTest, SlowReaderDoesNotHoldItUpBeyondTheDeadline)
{
    HttpOptions options = TestServer::usualOptions();
    options.writeDeadline = std::chrono::seconds(20);
    options.stopDeadline = milliseconds(200);
    std::atomic<int> begun{0};
    TestServer server(
        [&begun](const Request &) {
            ++begun;
            return Response{200, std::string(20'000'000, 'r'), "a/b", {}};
        },
        options);
    RawClient client(server.port(), 4096);
    client.send(get("/"));
    ASSERT_TRUE(eventually([&begun] { return begun == 1; }));
    const auto start = SteadyClock::now();
    server.server().stop();
    EXPECT_GE(SteadyClock::now() - start, milliseconds(190));
    EXPECT_LT(SteadyClock::now() - start, std::chrono::seconds(10));
}

TEST(HttpShutdownTest, StopTwiceAndStopWithoutStartDoNothing)
{
    TestServer server;
    server.server().stop();
    server.server().stop();
    HttpServer never(HttpOptions(), TestServer::echo);
    never.stop();
    EXPECT_EQ(never.port(), 0);
}

TEST(HttpShutdownTest, SecondStartIsAMistake)
{
    TestServer server;
    EXPECT_THROW(server.server().start(), std::logic_error);
}

class StopSignalNumberTest : public testing::TestWithParam<int>
{};

TEST_P(StopSignalNumberTest, EndsTheServerInGoodOrder)
{
    StopSignal signal;
    std::atomic<int> running{0};
    TestServer server(slowHandler(milliseconds(200), running));
    RawClient client(server.port());
    client.send(get("/"));
    ASSERT_TRUE(eventually([&running] { return running == 1; }));
    ASSERT_EQ(kill(getpid(), GetParam()), 0);
    EXPECT_EQ(signal.waitThenStop(server.server()), GetParam());
    EXPECT_EQ(client.receive().status, 200);
}

INSTANTIATE_TEST_SUITE_P(Signals, StopSignalNumberTest, testing::Values(SIGTERM, SIGINT));

TEST(StopSignalTest, WaitForGivesUpAtItsLimit)
{
    StopSignal signal;
    EXPECT_FALSE(signal.waitFor(milliseconds(30)));
    ASSERT_EQ(kill(getpid(), SIGTERM), 0);
    EXPECT_EQ(signal.waitFor(std::chrono::seconds(20)), SIGTERM);
}

TEST(StopSignalTest, HangUpOfTheLastMomentDoesNotEndTheProcess)
{
    {
        StopSignal signal;
        TestServer server;
        ASSERT_EQ(kill(getpid(), SIGTERM), 0);
        EXPECT_EQ(signal.waitThenStop(server.server()), SIGTERM);
        ASSERT_EQ(kill(getpid(), SIGHUP), 0);
    }
    sigset_t pending{};
    sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGHUP), 0);
}

TEST(StopSignalTest, MaskIsRestoredAtItsEnd)
{
    sigset_t before{}, after{};
    pthread_sigmask(SIG_SETMASK, nullptr, &before);
    {
        StopSignal signal;
    }
    pthread_sigmask(SIG_SETMASK, nullptr, &after);
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        EXPECT_EQ(sigismember(&before, number), sigismember(&after, number));
}

} // namespace clockwell::server
