#pragma once

#include "Contains.h"
#include "ServerProcess.h"
#include "World.h"
#include "server/storage/PostgresEngine.h"
#include "server/storage/PostgresUrl.h"

#include <gtest/gtest.h>

#include <memory>

namespace clockwell::server::test {

/// A SQLite database with an office and an employee, an empty one of PostgreSQL, and the command that moves
/// the first into the second.
class MoveFixture : public testing::Test
{
protected:
    MoveFixture()
    {
        Database database{file};
        addCompany(database);
        addOffice(database, {});
        addEmployee(database, {});
    }

    static std::unique_ptr<Connection> connectTo(const std::string &url)
    {
        return connectPostgres(url, std::chrono::seconds{5});
    }
    void inFile(const std::string &sql) const { Connection{file, 1}.execute(sql); }
    void inTarget(const std::string &sql) const { connectTo(url)->execute(sql); }
    std::string fromTarget(const std::string &sql) const { return connectTo(url)->value<std::string>(sql); }
    /// With this program's tables, and no row in them.
    void makeSchemaInTarget() const { const Database made{url}; }

    ProcessResult move(const std::vector<std::string> &more = {}) const
    {
        std::vector<std::string> words{"admin", "--database", file, "move", "--to", url};
        words.insert(words.end(), more.begin(), more.end());
        return runServer(words, std::chrono::minutes{2});
    }
    testing::AssertionResult moves() const
    {
        const ProcessResult result = move();
        return result.exitCode == 0 ? testing::AssertionSuccess()
                                    : testing::AssertionFailure() << result.errors;
    }

    /// Everything in the database of PostgreSQL: its tables, columns, triggers and rows.
    std::string target() const
    {
        const auto connection = connectTo(url);
        std::string all =
            connection->value<std::string>("SELECT COALESCE(STRING_AGG(c.relname || '.' || a.attname, ' ' "
                                           "ORDER BY c.relname, a.attname), '')"
                                           " FROM pg_class c JOIN pg_attribute a ON a.attrelid = c.oid WHERE "
                                           "a.attnum > 0 AND NOT a.attisdropped"
                                           " AND c.relnamespace = CAST('public' AS regnamespace)");
        all += connection->value<std::string>("SELECT COALESCE(STRING_AGG(CAST(tgname AS TEXT), ' ' ORDER BY"
                                              " tgname), '') FROM pg_trigger WHERE NOT tgisinternal");
        for (const auto &table : connection->all<SingleColumn<std::string>>(postgresTablesSql))
            all += connection->value<std::string>(
                "SELECT COALESCE(STRING_AGG(CAST(t AS TEXT), ' '), '') FROM " + table.value + " t");
        return all;
    }
    /// The command has to fail with these words, and to leave both databases as they are.
    void expectRefusal(const std::vector<std::string> &words, const std::vector<std::string> &more = {}) const
    {
        const std::string fileBefore = readFile(file);
        const std::string before = target();
        const ProcessResult result = move(more);
        EXPECT_EQ(result.exitCode, 1) << result.output;
        for (const std::string &word : words)
            EXPECT_TRUE(contains(result.errors, word)) << word << " is not in: " << result.errors;
        EXPECT_EQ(target(), before);
        EXPECT_TRUE(readFile(file) == fileBefore);
    }

    TempFolder folder;
    std::string file = folder.file("clockwell.db");
    std::string url = emptyPostgresDatabase();
};

} // namespace clockwell::server::test
