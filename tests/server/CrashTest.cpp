#include "ServerProcess.h"
#include "TestDatabase.h"
#include "World.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace clockwell::server::test {

TEST(CrashTest, EveryAcknowledgedPunchSurvivesAKill)
{
    constexpr int people = 100;
    const TempFolder folder;
    const std::string file = databaseIn(folder, "a.db");
    {
        Database database{file};
        addCompany(database);
        addPeople(database, people);
    }
    ServerProcess server{file};
    ASSERT_NE(server.port(), 0);
    std::vector<std::string> tokens;
    for (int i = 0; i < people; ++i)
        tokens.push_back(send(server.port(), "POST", "/api/auth/login", "",
                              nlohmann::json{{"email", std::to_string(i) + "@example.org"},
                                             {"password", "Correct-Horse-7"},
                                             {"deviceId", "d"}}
                                  .dump())
                             .json()
                             .at("accessToken"));
    std::vector<char> acknowledged(people, 0);
    std::atomic<int> next = 0;
    std::atomic<int> answers = 0;
    std::vector<std::thread> clients;
    for (int client = 0; client < 4; ++client)
        clients.emplace_back([&] {
            for (int i = next++; i < people; i = next++) {
                const Reply reply = send(server.port(), "POST", "/api/attendance/punch",
                                         tokens[static_cast<std::size_t>(i)], punchBody(48.0, 11.0, 5, "d"));
                acknowledged[static_cast<std::size_t>(i)] = reply.status == 200 ? 1 : 0;
                if (++answers == people / 8)
                    server.kill(); // in the middle of the others' punches
            }
        });
    for (std::thread &client : clients)
        client.join();
    Database database{file};
    if (!testsPostgres()) {
        const auto verdict = database.read(
            [](Connection &connection) { return connection.value<std::string>("PRAGMA integrity_check"); });
        EXPECT_EQ(verdict, "ok");
    }
    int promised = 0;
    for (int i = 0; i < people; ++i) {
        const auto punches = database.read([&](Connection &connection) {
            return connection.value<long long>(
                "SELECT COUNT(*) FROM punches p JOIN attendance a ON a.id = p.attendance_id"
                " WHERE a.employee_id = :id",
                "e" + std::to_string(i));
        });
        promised += acknowledged[static_cast<std::size_t>(i)];
        EXPECT_GE(punches, acknowledged[static_cast<std::size_t>(i)]) << i;
        EXPECT_LE(punches, 1) << i;
    }
    EXPECT_GE(promised, people / 8 - 4);
    EXPECT_LT(promised, people); // the kill came in time
}

} // namespace clockwell::server::test
