#pragma once

#include "Contains.h"
#include "ServerProcess.h"
#include "World.h"

#include <gtest/gtest.h>

namespace clockwell::server::test {

/// Monday 10 June 2024 in an office on UTC: Kim, two administrators of the company and one of another
/// company. For the commands, which go by the machine's clock, that day is long past.
class CorrectionFixture : public testing::Test
{
protected:
    CorrectionFixture()
    {
        addOffice(world.database(), {.weekdays = 31});
        addEmployee(world.database(), {.joinedOn = "2024-06-03"});
        addAdministrator("ada");
        addAdministrator("bo");
        addAdministrator("eve");
        execute("INSERT INTO companies (id, name, code) VALUES ('company-2', 'Other Works', 'OW')");
        execute("UPDATE employees SET company_id = 'company-2' WHERE id = 'eve'");
        token = world.token();
    }

    void addAdministrator(const std::string &name)
    {
        addEmployee(world.database(), {.id = name, .name = name, .email = name + "@example.org"});
        execute("UPDATE employees SET role = 'ADMIN' WHERE id = '" + name + "'");
    }
    void execute(const std::string &sql)
    {
        world.database().write([&](Connection &connection) { connection.execute(sql); });
    }
    std::string query(const std::string &sql)
    {
        return world.database().read(
            [&](Connection &connection) { return connection.value<std::string>(sql); });
    }
    /// Sets the server's time and signs in again, for tokens are short-lived.
    void at(const std::string &isoText)
    {
        world.setNow(isoText);
        token = world.token();
    }
    void punchAt(const std::string &isoText)
    {
        at(isoText);
        const Reply reply = world.punch(token);
        EXPECT_EQ(reply.status, 200) << isoText << reply.body;
    }

    ProcessResult admin(std::vector<std::string> words) const
    {
        words.insert(words.begin(), {"admin", "--database", world.databaseFile()});
        return runServer(words);
    }
    nlohmann::json adminJson(std::vector<std::string> words) const
    {
        words.emplace_back("--json");
        return nlohmann::json::parse(admin(std::move(words)).output);
    }
    /// The command about Kim's day, by Ada.
    ProcessResult day(const std::string &command, const std::string &date,
                      const std::vector<std::string> &more) const
    {
        std::vector<std::string> words{"days", command, "kim@example.org", date, "--as", "ada@example.org"};
        words.insert(words.end(), more.begin(), more.end());
        return admin(words);
    }
    ProcessResult correct(const std::string &date, std::vector<std::string> times) const
    {
        times.insert(times.end(), {"--reason", "Forgotten"});
        return day("correct", date, times);
    }
    ProcessResult voidDay(const std::string &date) const
    {
        return day("void", date, {"--reason", "Wrong phone"});
    }
    nlohmann::json shown(const std::string &date) const
    {
        return adminJson({"days", "show", "kim@example.org", date});
    }

    nlohmann::json today() const { return world.get("/api/attendance/today", token).json(); }
    /// The record of a day in the app's history; null when it is not listed.
    nlohmann::json record(const std::string &date) const
    {
        for (const auto &candidate : world.get("/api/attendance/me", token).json())
            if (candidate.at("workDate") == date)
                return candidate;
        return nullptr;
    }
    nlohmann::json summary(const std::string &month = "2024-06") const
    {
        return world.get("/api/attendance/me/summary?month=" + month, token).json();
    }

    static testing::AssertionResult fails(const ProcessResult &result, int exitCode, const std::string &words)
    {
        if (result.exitCode == exitCode && contains(result.errors, words))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "exit " << result.exitCode << "\n"
                                           << result.output << result.errors;
    }

    World world{"2024-06-10T08:00:00Z"};
    std::string token;
};

} // namespace clockwell::server::test
