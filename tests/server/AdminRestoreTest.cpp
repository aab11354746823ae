#include "BackupFixture.h"
#include "server/storage/Migrations.h"
#include "server/storage/Schema.h"

#include <sys/stat.h>

#include <filesystem>

namespace clockwell::server::test {

/// A backup has been made, and then the employee was renamed.
class RestoreTest : public BackupFixture
{
protected:
    RestoreTest()
    {
        EXPECT_EQ(admin({"backup", copy}).exitCode, 0);
        rename(file, "Later");
    }

    static Reply login(const ServerProcess &server)
    {
        return send(server.port(), "POST", "/api/auth/login", "",
                    R"({"email":"kim@example.org","password":"Correct-Horse-7","deviceId":"d"})");
    }
    /// The command has to fail with these words and to leave everything as it is.
    void expectRefusal(const std::string &backup, const std::string &words) const
    {
        const std::size_t files = fileCount();
        const ProcessResult result = restore(backup);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_TRUE(contains(result.errors, words)) << result.errors;
        EXPECT_EQ(nameIn(file), "Later");
        EXPECT_EQ(fileCount(), files);
    }
    std::string keptFile() const
    {
        for (const auto &entry : std::filesystem::directory_iterator{folder.file("")})
            if (contains(entry.path().filename().string(), "clockwell.db.before-restore-"))
                return entry.path().string();
        return {};
    }
};

TEST_F(RestoreTest, DatabaseIsAsInTheBackupAndTheOldOneIsKept)
{
    const ProcessResult result = restore(copy);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(nameIn(file), "Kim Sample");
    const std::string kept = keptFile();
    EXPECT_EQ(result.output, "Restored " + file + " from " + copy +
                                 ": 1 employee, 0 days of attendance. Everybody has to sign in again.\n"
                                 "The database as it was before is in " +
                                 kept + ".\n");
    EXPECT_EQ(nameIn(kept), "Later");
    struct stat facts
    {};
    ASSERT_EQ(::stat(kept.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777U, 0600U);
    EXPECT_EQ(fileCount(), 3U);
    EXPECT_EQ(restore(kept).exitCode, 0); // and back
    EXPECT_EQ(nameIn(file), "Later");
}

TEST_F(RestoreTest, JsonSaysWhereTheOldDatabaseIs)
{
    const auto json = nlohmann::ordered_json::parse(admin({"restore", copy, "--yes", "--json"}).output);
    EXPECT_EQ(json.dump(), R"({"file":")" + copy + R"(","before":")" + keptFile() + R"(","schema":)" +
                               std::to_string(schemaVersion()) + R"(,"employees":1,"attendanceDays":0})");
}

TEST_F(RestoreTest, SessionsAndCodesOfTheBackupAreOver)
{
    std::string token;
    {
        ServerProcess server{file};
        token = login(server).json().at("accessToken");
        EXPECT_EQ(
            send(server.port(), "POST", "/api/auth/forgot-password", "", R"({"email":"kim@example.org"})")
                .status,
            200);
        ASSERT_EQ(admin({"backup", copy, "--force"}).exitCode, 0);
        EXPECT_EQ(server.terminate(), 0);
    }
    ASSERT_EQ(query(copy, "SELECT CAST(COUNT(*) AS TEXT) FROM codes"), "1");
    ASSERT_EQ(restore(copy).exitCode, 0);
    for (const char *table : {"codes", "access_tokens", "refresh_tokens", "token_families"})
        EXPECT_EQ(query(file, std::string{"SELECT CAST(COUNT(*) AS TEXT) FROM "} + table), "0") << table;
    const ServerProcess server{file};
    EXPECT_EQ(send(server.port(), "GET", "/api/auth/me", token).status, 401);
    EXPECT_EQ(login(server).status, 200);
}

TEST_F(RestoreTest, RunningServerIsNotDisturbed)
{
    ServerProcess server{file};
    ASSERT_EQ(login(server).status, 200);
    expectRefusal(copy, "is in use by a server or another program. Stop it, then restore again.");
    EXPECT_EQ(login(server).status, 200);
    server.terminate();
    EXPECT_EQ(restore(copy).exitCode, 0);
}

TEST_F(RestoreTest, AnyOtherOpenConnectionIsNotDisturbedEither)
{
    Database other{file};
    expectRefusal(copy, "is in use");
    other.write([](Connection &connection) { connection.execute("UPDATE employees SET phone = '1'"); });
}

TEST_F(RestoreTest, ReplacingHasToBeConfirmed)
{
    const ProcessResult result = admin({"restore", copy});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.errors, "The backup is sound: 1 employee, 0 days of attendance."))
        << result.errors;
    EXPECT_TRUE(contains(result.errors, "pass --yes"));
    EXPECT_EQ(nameIn(file), "Later");
    EXPECT_EQ(fileCount(), 2U);
}

TEST_F(RestoreTest, MissingDatabaseIsMade)
{
    const std::string fresh = folder.file("fresh.db");
    std::ofstream{fresh + "-wal"} << "left over";
    EXPECT_EQ(admin(fresh, {"restore", copy}).exitCode, 1);
    EXPECT_FALSE(std::filesystem::exists(fresh));
    std::filesystem::remove(fresh + "-wal");
    const ProcessResult result = admin(fresh, {"restore", copy});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(nameIn(fresh), "Kim Sample");
    struct stat facts
    {};
    ASSERT_EQ(::stat(fresh.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777U, 0600U);
    EXPECT_EQ(fileCount(), 3U);
}

TEST_F(RestoreTest, WhatIsNoBackupIsRefused)
{
    expectRefusal(folder.file("nothing.db"), "There is no backup ");
    expectRefusal(folder.file(""), "There is no backup ");
    expectRefusal(file, "belongs to the database itself");
    const std::string other = folder.file("other.db");
    std::ofstream{other} << "";
    expectRefusal(other, "is not a database of clockwell-server");
    std::ofstream{other} << std::string(8192, 'x');
    expectRefusal(other, "file is not a database");
    std::filesystem::remove(other);
    execute(other, "CREATE TABLE employees (id TEXT)");
    expectRefusal(other, "is not a database of clockwell-server");
    execute(other, "CREATE TABLE schema_migrations (version INTEGER NOT NULL PRIMARY KEY)");
    execute(other, "INSERT INTO schema_migrations (version) VALUES (2)");
    expectRefusal(other, "is not a database of clockwell-server"); // it only looks like one
}

TEST_F(RestoreTest, DamagedBackupIsRefused)
{
    damage(copy, "punches");
    expectRefusal(copy, "damaged");
    admin({"backup", copy, "--force"});
    std::filesystem::resize_file(copy, std::filesystem::file_size(copy) / 2);
    expectRefusal(copy, "The backup " + copy);
    admin({"backup", copy, "--force"});
    execute(copy, "UPDATE employees SET office_id = 'nowhere'");
    expectRefusal(copy, "rows refer to others that are not there");
}

TEST_F(RestoreTest, BackupOfANewerVersionIsRefused)
{
    execute(copy,
            "INSERT INTO schema_migrations (version) VALUES (" + std::to_string(schemaVersion() + 1) + ")");
    expectRefusal(copy, "was written by a newer version of clockwell-server");
}

TEST_F(RestoreTest, BackupOfAnOlderVersionIsBroughtUpToDate)
{
    const std::string old = folder.file("old.db");
    execute(old, "CREATE TABLE schema_migrations (version INTEGER NOT NULL PRIMARY KEY)");
    for (const std::string &statement : schemaSteps().front())
        execute(old, statement);
    execute(old, "INSERT INTO schema_migrations (version) VALUES (1)");
    EXPECT_EQ(restore(old).exitCode, 0);
    EXPECT_EQ(query(file, "SELECT CAST(COUNT(*) AS TEXT) FROM codes"), "0");
    EXPECT_EQ(query(old, "SELECT CAST(MAX(version) AS TEXT) FROM schema_migrations"), "1"); // left as it is
}

TEST_F(RestoreTest, OnlyADatabaseOfThisProgramIsReplaced)
{
    const std::string other = folder.file("other.db");
    execute(other, "CREATE TABLE notes (text TEXT)");
    EXPECT_TRUE(
        contains(admin(other, {"restore", copy, "--yes"}).errors, "is not a database of clockwell-server"));
    EXPECT_EQ(query(other, "SELECT CAST(COUNT(*) AS TEXT) FROM notes"), "0");
    std::ofstream{other} << std::string(8192, 'x');
    const ProcessResult damaged = admin(other, {"restore", copy, "--yes"});
    EXPECT_EQ(damaged.exitCode, 1);
    EXPECT_TRUE(contains(damaged.errors, "Move it away")) << damaged.errors;
    EXPECT_EQ(readFile(other), std::string(8192, 'x'));
}

TEST_F(RestoreTest, DatabaseWithDamagedTablesIsReplacedAndKeptAsItIs)
{
    damage(file, "punches");
    const auto damagedBytes = readFile(file);
    EXPECT_EQ(restore(copy).exitCode, 0);
    EXPECT_EQ(nameIn(file), "Kim Sample");
    EXPECT_EQ(query(file, "PRAGMA integrity_check"), "ok");
    constexpr std::size_t firstPage = 4096; // holds counters of changes
    EXPECT_EQ(readFile(keptFile()).substr(firstPage), damagedBytes.substr(firstPage));
}

TEST_F(RestoreTest, SymbolicLinkToTheDatabaseStaysOne)
{
    const std::string link = folder.file("link.db");
    std::filesystem::create_symlink(file, link);
    EXPECT_EQ(admin(link, {"restore", copy, "--yes"}).exitCode, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(nameIn(file), "Kim Sample");
}

} // namespace clockwell::server::test
