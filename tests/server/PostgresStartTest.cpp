#include "Contains.h"
#include "OldPostgres.h"
#include "ServerProcess.h"
#include "TestDatabase.h"
#include "World.h"
#include "server/storage/Migrations.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace clockwell::server::test {

namespace {

std::unique_ptr<Connection> connectTo(const std::string &url)
{
    return connectPostgres(url, std::chrono::seconds{5});
}

/// Four real servers at once; how many of them came to listen.
long long startFour(const std::string &url)
{
    std::vector<std::unique_ptr<ServerProcess>> servers(4);
    std::vector<std::thread> threads;
    for (auto &server : servers)
        threads.emplace_back([&] { server = std::make_unique<ServerProcess>(url); });
    for (std::thread &thread : threads)
        thread.join();
    return std::ranges::count_if(servers, [](const auto &server) { return server->port() != 0; });
}

long long number(const std::string &url, const std::string &sql)
{
    return connectTo(url)->value<long long>(sql);
}

} // namespace

TEST(PostgresStartTest, FourServersStartOnAnEmptyDatabase)
{
    const std::string url = emptyPostgresDatabase();
    EXPECT_EQ(startFour(url), 4);
    EXPECT_EQ(number(url, "SELECT COUNT(*) FROM schema_migrations"), schemaVersion());
    EXPECT_EQ(number(url, "SELECT MAX(version) FROM schema_migrations"), schemaVersion());
}

TEST(PostgresStartTest, FourServersStartOnAnOlderSchemaAndKeepItsRows)
{
    const std::string url = emptyPostgresDatabase();
    makeOldPostgres(url, 2);
    EXPECT_EQ(startFour(url), 4);
    EXPECT_EQ(number(url, "SELECT COUNT(*) FROM schema_migrations"), schemaVersion());
    EXPECT_EQ(number(url, "SELECT check_in_at FROM attendance WHERE employee_id = 'e'"), 5);
    EXPECT_EQ(number(url, "SELECT ordinal FROM punches WHERE attendance_id = 'a'"), 1);
}

TEST(PostgresStartTest, StartWaitsForAnotherThatMigrates)
{
    const std::string url = emptyPostgresDatabase();
    const auto other = connectTo(url);
    other->execute("BEGIN ISOLATION LEVEL SERIALIZABLE");
    migrate(*other);
    std::atomic<bool> isOpen = false;
    std::thread start{[&] {
        Database database{url};
        isOpen = true;
    }};
    std::this_thread::sleep_for(std::chrono::milliseconds{1500}); // several times as long as one try
    EXPECT_FALSE(isOpen);
    other->commit();
    start.join();
    EXPECT_TRUE(isOpen);
    EXPECT_EQ(number(url, "SELECT COUNT(*) FROM schema_migrations"), schemaVersion());
}

TEST(PostgresStartTest, TableOfSomebodyElseIsSaidAndNotWaitedFor)
{
    const std::string url = emptyPostgresDatabase();
    connectTo(url)->execute("CREATE TABLE audit (theirs BIGINT)");
    try {
        const Database database{url};
        FAIL();
    } catch (const DatabaseError &error) {
        EXPECT_TRUE(contains(error.what(), "a part of the schema is there already (SQLSTATE 42P07)"))
            << error.what();
    }
    EXPECT_EQ(number(url, "SELECT COUNT(*) FROM information_schema.tables"
                          " WHERE table_schema = current_schema()"),
              1);
}

TEST(PostgresStartTest, NewerSchemaIsRefusedAndLeftAlone)
{
    const TempFolder folder;
    const std::string url = databaseIn(folder);
    connectTo(url)->execute("INSERT INTO schema_migrations (version) VALUES (:version)", schemaVersion() + 1);
    const ProcessResult result = runServer({"serve", "--database", url, "--outbox", folder.file("mail")});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.errors, "newer version of clockwell-server")) << result.errors;
    EXPECT_EQ(number(url, "SELECT COUNT(*) FROM schema_migrations"), schemaVersion() + 1);
}

TEST(PostgresStartTest, DatabaseThatIsNotThereIsSaidPlainly)
{
    std::string url = emptyPostgresDatabase();
    url.insert(url.find('?'), "_not");
    const ProcessResult result = runServer({"serve", "--database", url});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.errors, "cannot be used: ")) << result.errors;
    EXPECT_TRUE(contains(result.errors, "does not exist.")) << result.errors;
}

TEST(PostgresStartTest, DatabaseOfAnotherEncodingIsRefused)
{
    std::string url = emptyPostgresDatabase();
    const auto begin = url.rfind('/', url.find('?')) + 1;
    const std::string name = url.substr(begin, url.find('?') - begin) + "_latin";
    onPostgres("CREATE DATABASE " + name + " TEMPLATE template0 ENCODING 'LATIN1' LOCALE 'C'");
    url.replace(begin, url.find('?') - begin, name);
    const ProcessResult result = runServer({"serve", "--database", url});
    onPostgres("DROP DATABASE " + name);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.errors, "its encoding is LATIN1")) << result.errors;
}

} // namespace clockwell::server::test
