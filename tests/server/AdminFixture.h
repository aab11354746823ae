#pragma once

#include "Contains.h"
#include "ServerProcess.h"
#include "TestDatabase.h"
#include "World.h"

#include <gtest/gtest.h>

namespace clockwell::server::test {

/// A database file with the company "Sample Works" (code SW) and nothing else, made without a server, and the
/// program that administers it.
class AdminFixture : public testing::Test
{
public:
    /// The access token of kim@example.org, as addEmployee makes the account.
    static std::string token(std::uint16_t port)
    {
        const Reply reply =
            send(port, "POST", "/api/auth/login", "",
                 R"({"email":"kim@example.org","password":"Correct-Horse-7","deviceId":"d"})");
        EXPECT_EQ(reply.status, 200) << reply.body;
        return reply.json().value("accessToken", "");
    }

protected:
    AdminFixture() { addCompany(database); }

    void execute(const std::string &sql)
    {
        database.write([&](Connection &connection) { connection.execute(sql); });
    }
    ProcessResult admin(std::vector<std::string> words) const
    {
        words.insert(words.begin(), {"admin", "--database", file});
        return runServer(words);
    }
    nlohmann::json adminJson(std::vector<std::string> words) const
    {
        words.emplace_back("--json");
        return nlohmann::json::parse(admin(std::move(words)).output);
    }
    /// The exit code; what was printed is shown when it is not the expected one.
    testing::AssertionResult ends(int exitCode, const std::vector<std::string> &words,
                                  const std::string &saying = {}) const
    {
        const ProcessResult result = admin(words);
        if (result.exitCode == exitCode && contains(exitCode == 0 ? result.output : result.errors, saying))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "exit " << result.exitCode << "\n"
                                           << result.output << result.errors;
    }

    TempFolder folder;
    std::string file = databaseIn(folder);
    Database database{file};
};

} // namespace clockwell::server::test
