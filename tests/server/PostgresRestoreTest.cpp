#include "AdminFixture.h"
#include "OldPostgres.h"
#include "PostgresServer.h"
#include "server/storage/Migrations.h"

#include <cstdlib>
#include <sstream>

namespace clockwell::server::test {

namespace {

/// The lines that are commands, of what the program says.
std::string commandsIn(const std::string &text)
{
    std::istringstream lines{text};
    std::string commands;
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("  "))
            commands += line + '\n';
    return commands;
}

std::string with(std::string text, const std::vector<std::pair<std::string, std::string>> &values)
{
    for (const auto &[word, value] : values)
        for (auto at = text.find(word); at != std::string::npos; at = text.find(word, at + value.size()))
            text.replace(at, word.size(), value);
    return text;
}

} // namespace

/// A PostgreSQL of its own, and its programs, run as `admin backup` and `admin restore` say.
class PostgresRestoreTest : public testing::Test
{
protected:
    void backUp() { run({"backup", dump}, {{"URL", postgres.url()}, {"FILE", dump}}); }
    void restore()
    {
        run({"restore", dump, "--yes"},
            {{"URL", restoredUrl}, {"FILE", dump}, {"ROLE", "postgres"}, {"NAME", "restored"}});
    }
    static long long number(const std::string &url, const std::string &sql)
    {
        return connectPostgres(url, std::chrono::seconds{5})->value<long long>(sql);
    }

    TempFolder folder;
    std::string dump = folder.file("monday.dump");
    PostgresServer postgres;
    std::string restoredUrl = with(postgres.url(), {{"/postgres?", "/restored?"}});

private:
    void run(std::vector<std::string> words, const std::vector<std::pair<std::string, std::string>> &values)
    {
        words.insert(words.begin(), {"admin", "--database", postgres.url()});
        const ProcessResult said = runServer(words);
        const std::string commands = commandsIn(said.errors);
        ASSERT_FALSE(commands.empty()) << said.errors;
        const std::string environment = "set -e; export PGHOST='" + postgres.folder() + "' PGUSER=postgres\n";
        const std::string script = with(commands, values);
        EXPECT_EQ(std::system((environment + script).c_str()), 0) << script;
    }
};

TEST_F(PostgresRestoreTest, BackupFromBeforeAnUpgradeIsRestoredAndBroughtUpToDate)
{
    makeOldPostgres(postgres.url(), 2);
    backUp();
    {
        Database upgraded{postgres.url()};
        upgraded.write(
            [](Connection &connection) { connection.execute("UPDATE employees SET full_name = 'After'"); });
    }
    restore();
    const ServerProcess server{restoredUrl};
    EXPECT_NE(server.port(), 0) << server.log();
    EXPECT_EQ(number(restoredUrl, "SELECT MAX(version) FROM schema_migrations"), schemaVersion());
    EXPECT_EQ(number(restoredUrl, "SELECT COUNT(*) FROM employees WHERE full_name = 'Kim'"), 1);
    EXPECT_EQ(number(restoredUrl, "SELECT ordinal FROM punches WHERE attendance_id = 'a'"), 1);
}

TEST_F(PostgresRestoreTest, SessionsAndCodesOfTheBackupAreOver)
{
    {
        Database database{postgres.url()};
        addCompany(database);
        addOffice(database, {});
        addEmployee(database, {});
    }
    std::string token;
    {
        const ServerProcess server{postgres.url()};
        token = AdminFixture::token(server.port());
        send(server.port(), "POST", "/api/auth/forgot-password", "", R"({"email":"kim@example.org"})");
        ASSERT_EQ(send(server.port(), "GET", "/api/attendance/today", token).status, 200);
    }
    ASSERT_EQ(number(postgres.url(), "SELECT COUNT(*) FROM codes"), 1);
    backUp();
    restore();
    const ServerProcess server{restoredUrl};
    ASSERT_NE(server.port(), 0) << server.log();
    EXPECT_EQ(send(server.port(), "GET", "/api/attendance/today", token).status, 401);
    for (const std::string table : {"codes", "access_tokens", "refresh_tokens", "token_families"})
        EXPECT_EQ(number(restoredUrl, "SELECT COUNT(*) FROM " + table), 0) << table;
    EXPECT_NE(AdminFixture::token(server.port()), "");
}

} // namespace clockwell::server::test
