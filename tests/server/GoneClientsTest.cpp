#include "Midnight.h"
#include "ServerProcess.h"
#include "TestDatabase.h"
#include "World.h"
#include "http/RawClient.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

namespace clockwell::server::test {

namespace {

constexpr int people = 60;
constexpr int workers = 4; // of the lane of those who are signed in

std::string signIn(std::uint16_t port, int person)
{
    const nlohmann::json body{{"email", std::to_string(person) + "@example.org"},
                              {"password", "Correct-Horse-7"},
                              {"deviceId", "d"}};
    return send(port, "POST", "/api/auth/login", "", body.dump()).json().at("accessToken");
}

std::string punchRequest(const std::string &token)
{
    return post("/api/attendance/punch", punchBody(48.0, 11.0, 5, "d"),
                "Content-Type: application/json\r\nAuthorization: Bearer " + token + "\r\n");
}

Reply punchAgain(std::uint16_t port, const std::string &token)
{
    return send(port, "POST", "/api/attendance/punch", token, punchBody(48.0, 11.0, 5, "d"));
}

} // namespace

class GoneClientsTest : public testing::Test
{
protected:
    GoneClientsTest()
    {
        addCompany(database);
        addPeople(database, people);
    }

    long long punches()
    {
        return database.read([](Connection &connection) {
            return connection.value<long long>("SELECT COUNT(*) FROM punches");
        });
    }

    TempFolder folder;
    std::string file = databaseIn(folder, "a.db");
    Database database{file};
};

TEST_F(GoneClientsTest, PunchesOfThoseWhoHaveGivenUpAreNotBegunAndTheirRetriesAreCheckIns)
{
    passMidnight();
    const ServerProcess server{file};
    ASSERT_NE(server.port(), 0);
    std::vector<std::string> tokens;
    for (int i = 0; i < people; ++i)
        tokens.push_back(signIn(server.port(), i));
    {
        WriteBlocker blocker{file}; // no punch can be recorded
        std::vector<std::unique_ptr<RawClient>> clients;
        for (const std::string &token : tokens) {
            clients.push_back(std::make_unique<RawClient>(server.port()));
            clients.back()->send(punchRequest(token));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds{200});
        clients.clear();
        blocker.end();
    }
    // Its turn comes after all of them.
    EXPECT_EQ(send(server.port(), "GET", "/api/attendance/today", tokens.front()).status, 200);
    std::this_thread::sleep_for(std::chrono::milliseconds{300}); // for those that were begun
    EXPECT_LE(punches(), workers);
    for (const std::string &token : tokens) {
        const Reply retry = punchAgain(server.port(), token);
        ASSERT_EQ(retry.status, 200) << retry.body;
        EXPECT_EQ(retry.json().at("type"), "IN");
        EXPECT_EQ(punchAgain(server.port(), token).body, retry.body);
    }
    EXPECT_EQ(punches(), people);
}

} // namespace clockwell::server::test
