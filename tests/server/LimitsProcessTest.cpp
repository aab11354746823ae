#include "HttpClient.h"
#include "Midnight.h"
#include "ServerProcess.h"
#include "World.h"

#include <gtest/gtest.h>

#include <optional>

namespace clockwell::server::test {

/// Real servers on one database, one of which dies.
class LimitsProcessTest : public testing::Test
{
protected:
    LimitsProcessTest()
    {
        Database made{database};
        addCompany(made);
        addOffice(made, {});
        addEmployee(made, {});
    }
    void start(std::optional<ServerProcess> &server)
    {
        server.emplace(database, std::vector<std::string>{"--outbox", folder.file("mail"),
                                                          "--codes-per-address", "2", "--code-requests", "4",
                                                          "--failed-sign-ins-per-network", "7"});
        ASSERT_NE(server->port(), 0);
    }
    static Reply login(const std::optional<ServerProcess> &server, const std::string &email,
                       const std::string &password)
    {
        return send(server->port(), "POST", "/api/auth/login", "",
                    nlohmann::json{{"email", email}, {"password", password}, {"deviceId", "d"}}.dump());
    }
    static int forgot(const std::optional<ServerProcess> &server, const std::string &email)
    {
        return send(server->port(), "POST", "/api/auth/forgot-password", "",
                    nlohmann::json{{"email", email}}.dump())
            .status;
    }

    TempFolder folder;
    std::string database = databaseIn(folder);
    std::optional<ServerProcess> one;
    std::optional<ServerProcess> two;
};

TEST_F(LimitsProcessTest, AreCountedTogetherAndOutliveAKill)
{
    start(one);
    start(two);
    const std::string kim = "kim@example.org";
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(login(i % 2 == 0 ? one : two, kim, "wrong").status, 401);
    EXPECT_EQ(login(one, kim, "Correct-Horse-7").status, 429);
    EXPECT_EQ(login(two, kim, "Correct-Horse-7").status, 429);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(forgot(i % 2 == 0 ? one : two, std::to_string(i) + "@example.org"), 200);
    EXPECT_EQ(forgot(two, kim), 429);
    one->kill();
    EXPECT_EQ(login(two, kim, "Correct-Horse-7").status, 429);
    two->kill();
    start(one);
    EXPECT_EQ(login(one, kim, "Correct-Horse-7").message().substr(0, 30), "Too many attempts to sign in. ");
    EXPECT_EQ(forgot(one, kim), 429);
    EXPECT_EQ(login(one, "lee@example.org", "wrong").status, 401);
    EXPECT_EQ(login(one, "max@example.org", "wrong").status, 401);
    EXPECT_EQ(login(one, "eve@example.org", "wrong").message().substr(0, 24), "Too many wrong passwords");
}

TEST_F(LimitsProcessTest, SessionsOfAServerThatDiedGoOnAtTheOther)
{
    passMidnight();
    start(one);
    start(two);
    const auto session = login(one, "kim@example.org", "Correct-Horse-7").json();
    const std::string punch = punchBody(48.0005, 11.0, 10, "dev-1");
    const Reply first = send(one->port(), "POST", "/api/attendance/punch", session.at("accessToken"), punch);
    ASSERT_EQ(first.status, 200) << first.body;
    one->kill();
    EXPECT_EQ(send(two->port(), "POST", "/api/attendance/punch", session.at("accessToken"), punch).body,
              first.body);
    EXPECT_EQ(send(two->port(), "POST", "/api/auth/refresh", "",
                   nlohmann::json{{"refreshToken", session.at("refreshToken")}}.dump())
                  .status,
              200);
    EXPECT_EQ(
        runServer({"admin", "employees", "suspend", "kim@example.org", "--database", database}).exitCode, 0);
    EXPECT_EQ(send(two->port(), "GET", "/api/auth/me", session.at("accessToken")).status, 401);
}

} // namespace clockwell::server::test
