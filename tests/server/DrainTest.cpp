#include "Contains.h"
#include "HttpClient.h"
#include "PortInLog.h"
#include "ServerProcess.h"
#include "World.h"
#include "http/TestServer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <thread>
#include <vector>

namespace clockwell::server::test {

class DrainTest : public testing::Test
{
protected:
    static std::vector<std::string> options(const char *seconds)
    {
        return {"--operator-listen", "127.0.0.1:0", "--drain-seconds", seconds, "--account-requests", "0"};
    }

    static std::string signIn(const ServerProcess &server, int person)
    {
        const nlohmann::json body{{"email", std::to_string(person) + "@example.org"},
                                  {"password", "Correct-Horse-7"},
                                  {"deviceId", "d"}};
        return send(server.port(), "POST", "/api/auth/login", "", body.dump()).json().at("accessToken");
    }

    TempFolder folder;
    std::string file = folder.file("a.db");
};

TEST_F(DrainTest, RequestsAreServedWhileReadinessSaysNo)
{
    ServerProcess server{file, options("60")};
    const std::uint16_t port = portInLog(server, "operatorListening");
    RawClient kept{server.port()};
    EXPECT_EQ(kept.exchange(get("/health")).headers.count("connection"), 0U) << "it is kept";
    ASSERT_EQ(send(port, "GET", "/ready").status, 200);
    ASSERT_EQ(::kill(server.process(), SIGTERM), 0);
    ASSERT_TRUE(eventually([&] { return send(port, "GET", "/ready").status == 503; }));
    EXPECT_EQ(send(port, "GET", "/ready").error(), "STOPPING");
    EXPECT_EQ(send(port, "GET", "/health").status, 200);
    EXPECT_TRUE(eventually(
        [&] { return RawClient{server.port()}.exchange(get("/health")).headers["connection"] == "close"; }));
    const auto last = kept.exchange(get("/health"));
    EXPECT_EQ(last.status, 200);
    EXPECT_EQ(last.headers.at("connection"), "close");
    EXPECT_TRUE(kept.closesWithin(std::chrono::seconds{5}));
    ASSERT_EQ(::kill(server.process(), SIGHUP), 0); // does not end it
    EXPECT_EQ(send(server.port(), "GET", "/health").status, 200);
    EXPECT_EQ(server.terminate(), 0) << "another signal ends the drain at once, in good order";
    EXPECT_TRUE(contains(server.log(), "event=stopped signal=15"));
}

TEST_F(DrainTest, EndsByItself)
{
    ServerProcess server{file, options("1")};
    ASSERT_NE(server.port(), 0);
    EXPECT_EQ(server.terminate(), 0);
}

TEST_F(DrainTest, NoRequestIsRefusedOrCutOffUnderLoad)
{
    constexpr int people = 8;
    {
        Database database{file};
        addCompany(database);
        addPeople(database, people);
    }
    ServerProcess server{file, options("60")};
    const std::uint16_t operators = portInLog(server, "operatorListening");
    ASSERT_NE(operators, 0);
    std::vector<std::string> tokens;
    for (int i = 0; i < people; ++i)
        tokens.push_back(signIn(server, i));
    std::atomic<bool> goesOn{
        true}; // as a balancer sends requests: until it sees that the server is not ready
    std::atomic<int> answered{0}, failed{0}, afterSignal{0};
    std::atomic<bool> signalled{false};
    std::vector<std::thread> clients;
    for (const std::string &token : tokens)
        clients.emplace_back([&, token] {
            std::unique_ptr<RawClient> client;
            while (goesOn) {
                if (!client)
                    client = std::make_unique<RawClient>(server.port());
                const bool late = signalled;
                auto response =
                    client->exchange(get("/api/attendance/me", "Authorization: Bearer " + token + "\r\n"));
                ++(response.status == 200 ? answered : failed);
                afterSignal += late ? 1 : 0;
                if (response.status == 0 || response.headers["connection"] == "close")
                    client.reset();
            }
        });
    EXPECT_TRUE(eventually([&] { return answered > 50; }));
    ASSERT_EQ(::kill(server.process(), SIGTERM), 0);
    EXPECT_TRUE(eventually([&] { return send(operators, "GET", "/ready").status == 503; }));
    signalled = true;
    EXPECT_TRUE(within(std::chrono::seconds{20}, [&] { return afterSignal > 100; }));
    goesOn = false;
    for (std::thread &client : clients)
        client.join();
    EXPECT_EQ(failed, 0);
    EXPECT_GT(answered, 150);
    EXPECT_EQ(server.terminate(), 0);
}

} // namespace clockwell::server::test
