#include "OtherServer.h"
#include "server/auth/Sessions.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

namespace clockwell::server::test {

/// An office where everybody comes at nine, behind one address, on the first day with a new database: in
/// tables with few rows all people share a few pages. Two servers do as much at once as they can.
class OfficeAtNineTest : public testing::Test
{
protected:
    const int people = testsPostgres() ? 600 : 200;
    static constexpr unsigned threads = 32;      // of each server
    const int phones = testsPostgres() ? 64 : 8; // at a time; SQLite writes one after the other in any case

    OfficeAtNineTest()
    {
        addEmployee(world.database(), {.officeId = std::nullopt, .password = password});
        addOffice(world.database(), {});
        world.database().write([this](Connection &connection) {
            for (int i = 0; i < people; ++i)
                connection.execute(
                    "INSERT INTO employees (id, company_id, office_id, full_name, email, email_key,"
                    " password_hash, role, status, email_verified, joined_on, created_at)"
                    " SELECT :id, company_id, 'office-1', full_name, :email, :key, password_hash, role,"
                    " status, email_verified, joined_on, created_at FROM employees WHERE id = 'employee-1'",
                    "e" + std::to_string(i), emailOf(i), emailOf(i));
        });
    }
    static std::string emailOf(int person) { return std::to_string(person) + "@example.org"; }

    /// The access tokens of all.
    std::vector<std::string> signIn()
    {
        const Sessions sessions{world.database(), world.clock()};
        return world.database().write([&](Connection &connection) {
            std::vector<std::string> tokens;
            bool tidy = false;
            for (int i = 0; i < people; ++i) {
                const auto person = findEmployeeByEmail(connection, emailOf(i)).value();
                tokens.push_back(sessions.start(connection, person, "dev-1", tidy).value().accessToken);
            }
            return tokens;
        });
    }

    /// How many requests, one by each person, half of them to each server, had this status.
    /// `ask(person, port)`.
    long long replies(int status, const std::function<Reply(std::size_t, std::uint16_t)> &ask) const
    {
        std::atomic<std::size_t> next = 0;
        std::atomic<long long> count = 0;
        std::vector<std::thread> threadsOfPhones;
        for (int i = 0; i < phones; ++i)
            threadsOfPhones.emplace_back([&] {
                for (std::size_t person = next++; person < static_cast<std::size_t>(people); person = next++)
                    if (ask(person, (person % 2 == 0 ? one : two).port()).status == status)
                        ++count;
            });
        for (std::thread &phone : threadsOfPhones)
            phone.join();
        return count;
    }

    long long number(const std::string &sql)
    {
        return world.database().read(
            [&](Connection &connection) { return connection.value<long long>("SELECT " + sql); });
    }

    World world;
    const std::string password = "Correct-Horse-7";
    const OtherServer one{world, World::cheap(), SendMail{[](const Mail &) {}}, threads};
    const OtherServer two{world, World::cheap(), SendMail{[](const Mail &) {}}, threads};
};

TEST_F(OfficeAtNineTest, EverybodySignsIn)
{
    const auto signIn = [&](std::size_t person, std::uint16_t port) {
        const nlohmann::json body{
            {"email", emailOf(static_cast<int>(person))}, {"password", password}, {"deviceId", "dev-1"}};
        return send(port, "POST", "/api/auth/login", "", body.dump());
    };
    EXPECT_EQ(replies(200, signIn), people);
    EXPECT_EQ(number("COUNT(*) FROM token_families"), people);
    EXPECT_EQ(number("COUNT(*) FROM counted_events"), 0);
    // With many at once they are added up meanwhile, and what is given back are rows of their own.
    EXPECT_EQ(number("COALESCE(CAST(ROUND(SUM(amount)) AS BIGINT), 0) FROM spendings"), 0);
}

TEST_F(OfficeAtNineTest, EverybodyChecksIn)
{
    const auto tokens = signIn();
    const auto punch = [&](std::size_t person, std::uint16_t port) {
        return send(port, "POST", "/api/attendance/punch", tokens.at(person),
                    punchBody(48.0005, 11.0, 10, "dev-1"));
    };
    EXPECT_EQ(replies(200, punch), people);
    EXPECT_EQ(number("COUNT(DISTINCT employee_id) FROM attendance WHERE check_in_at IS NOT NULL"), people);
    EXPECT_EQ(number("COUNT(*) FROM attendance"), people);
    EXPECT_EQ(number("COUNT(DISTINCT attendance_id) FROM punches WHERE ordinal = 1 AND type = 'IN'"), people);
    EXPECT_EQ(number("COUNT(*) FROM punches"), people);
}

} // namespace clockwell::server::test
