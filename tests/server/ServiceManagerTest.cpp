#include "server/operation/ServiceManager.h"

#include "NotifySocket.h"
#include "ServerProcess.h"
#include "http/TestServer.h"

#include <gtest/gtest.h>

#include <csignal>

namespace clockwell::server::test {

using std::chrono::milliseconds;

namespace {

constexpr const char *alive = "WATCHDOG=1";

ServiceManager::Probe probeOf(HttpServer &server)
{
    return [&server](std::function<void()> answered) { server.probe(std::move(answered)); };
}

} // namespace

TEST(ServiceManagerTest, ProcessSaysThatItIsReadyLivesAndStops)
{
    const NotifySocket manager{milliseconds{400}};
    const TempFolder folder;
    ServerProcess server{folder.file("a.db")};
    ASSERT_NE(server.port(), 0);
    EXPECT_EQ(manager.next(), "READY=1");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(manager.next(), alive) << i;
    EXPECT_EQ(server.terminate(), 0);
    EXPECT_TRUE(manager.hears("STOPPING=1"));
}

TEST(ServiceManagerTest, DrainBeginsTheStopAndKeepsTheWatchdogQuiet)
{
    const NotifySocket manager{milliseconds{400}};
    const TempFolder folder;
    ServerProcess server{folder.file("a.db"), {"--drain-seconds", "60"}};
    ASSERT_NE(server.port(), 0);
    ASSERT_EQ(manager.next(), "READY=1");
    ASSERT_EQ(::kill(server.process(), SIGTERM), 0);
    EXPECT_TRUE(manager.hears("STOPPING=1"));
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(manager.next(), alive) << i;
    EXPECT_EQ(server.terminate(), 0) << "asked again, it drains no longer";
}

TEST(ServiceManagerTest, WithoutWatchdogThereAreTwoMessages)
{
    const NotifySocket manager;
    const TempFolder folder;
    ServerProcess server{folder.file("a.db")};
    ASSERT_NE(server.port(), 0);
    EXPECT_EQ(server.terminate(), 0);
    EXPECT_EQ(manager.next(), "READY=1");
    EXPECT_EQ(manager.next(), "STOPPING=1");
    EXPECT_EQ(manager.next(milliseconds{1}), "");
}

TEST(ServiceManagerTest, FailedStartIsNeverReady)
{
    const NotifySocket manager;
    const TempFolder folder;
    EXPECT_EQ(runServer({"serve", "--database", folder.file("a.db"), "--listen", "192.0.2.1:1"}).exitCode, 1);
    EXPECT_NE(manager.next(milliseconds{1}), "READY=1");
}

TEST(ServiceManagerTest, ServerWhoseWorkersHangIsNotAlive)
{
    const NotifySocket socket{milliseconds{100}};
    Gate gate;
    std::atomic<int> begun{0};
    HttpOptions options = TestServer::usualOptions();
    options.signedInThreads = 2;
    TestServer server(
        [&](const Request &) {
            ++begun;
            gate.pass();
            return Response{};
        },
        options);
    ServiceManager manager;
    const ReadyService ready{manager, probeOf(server.server())};
    ASSERT_TRUE(socket.hears(alive));
    RawClient one(server.port()), two(server.port()), three(server.port());
    for (RawClient *client : {&one, &two, &three})
        client->send(get("/"));
    ASSERT_TRUE(eventually([&] { return begun == 2; }));
    // After an answer that was under way.
    EXPECT_TRUE(eventually([&] { return socket.next(milliseconds{500}).empty(); }))
        << "all workers are held up";
    gate.open();
    EXPECT_TRUE(socket.hears(alive)) << "and now they are not";
}

TEST(ServiceManagerTest, LongQueueIsNoStandstill)
{
    const NotifySocket socket{milliseconds{200}};
    HttpOptions options = TestServer::usualOptions();
    options.signedInThreads = 1;
    options.stopDeadline = milliseconds{10};
    TestServer server(
        [](const Request &) {
            std::this_thread::sleep_for(milliseconds{20});
            return Response{};
        },
        options);
    std::vector<std::unique_ptr<RawClient>> clients;
    for (int i = 0; i < 500; ++i) { // ten seconds of work
        clients.push_back(std::make_unique<RawClient>(server.port()));
        clients.back()->send(get("/"));
    }
    ServiceManager manager;
    const ReadyService ready{manager, probeOf(server.server())};
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(socket.hears(alive)) << i;
    char byte = 0;
    const auto received = ::recv(clients.back()->descriptor(), &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    EXPECT_EQ(received, -1) << "the queue is still long";
}

TEST(ServiceManagerTest, EndsAtOnceWhetherTheProbeIsAnsweredOrNot)
{
    const NotifySocket socket{std::chrono::minutes{10}};
    std::function<void()> late;
    const auto begin = std::chrono::steady_clock::now();
    {
        ServiceManager manager;
        std::promise<void> asked;
        const ReadyService ready{manager, [&](std::function<void()> answered) {
                                     late = std::move(answered);
                                     asked.set_value();
                                 }};
        asked.get_future().wait();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::minutes{1});
    late(); // harmless
    EXPECT_EQ(socket.next(), "READY=1");
    EXPECT_TRUE(socket.hears("STOPPING=1")); // perhaps behind a sign of life: whoever stops is alive
}

} // namespace clockwell::server::test
