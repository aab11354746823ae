#include "TestDatabase.h"
#include "World.h"
#include "server/storage/Migrations.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

namespace clockwell::server::test {

namespace {

DatabaseError::Kind kindOfFailure(const std::function<void()> &work)
{
    try {
        work();
    } catch (const DatabaseError &error) {
        return error.kind();
    }
    ADD_FAILURE() << "it did not fail";
    return DatabaseError::Kind::Unusable;
}

void insertCompany(Connection &connection, const std::string &id)
{
    connection.execute("INSERT INTO companies (id, name, code) VALUES (:id, 'Name', :code)", id, id);
}

long long companies(Database &database)
{
    return database.read(
        [](Connection &connection) { return connection.value<long long>("SELECT COUNT(*) FROM companies"); });
}

} // namespace

TEST(DatabaseTest, ValuesComeBackAsTheyWere)
{
    struct Row
    {
        std::string text;
        long long number = 0;
        double real = 0;
        std::optional<std::string> none;
        std::optional<long long> some;
        auto columns() { return std::tie(text, number, real, none, some); }
    };
    const TempFolder folder;
    Database database{databaseIn(folder, "a.db")};
    const auto row = database.write([](Connection &connection) {
        connection.execute(
            "CREATE TABLE sample (a VARCHAR(99), b BIGINT, c DOUBLE PRECISION, d VARCHAR(9), e BIGINT)");
        connection.execute("INSERT INTO sample VALUES (:a, :b, :c, :d, :e)", "O'Hara; \xE2\x82\xAC",
                           9'007'199'254'740'993LL, 0.1, std::optional<std::string>{},
                           std::optional<long long>{-7});
        return connection.first<Row>("SELECT a, b, c, d, e FROM sample").value();
    });
    EXPECT_EQ(row.text, "O'Hara; \xE2\x82\xAC");
    EXPECT_EQ(row.number, 9'007'199'254'740'993LL);
    EXPECT_EQ(row.real, 0.1);
    EXPECT_FALSE(row.none);
    EXPECT_EQ(row.some, -7);
}

TEST(DatabaseTest, FileNamesMayHaveBlanksAndIsPrivate)
{
    const TempFolder folder;
    const std::string file = databaseIn(folder, "my attendance.db");
    Database database{file};
    database.write([](Connection &connection) { insertCompany(connection, "i"); });
    for (const std::string &name : {file, file + "-wal", file + "-shm"}) {
        const auto others = std::filesystem::status(name).permissions() &
                            (std::filesystem::perms::group_all | std::filesystem::perms::others_all);
        EXPECT_EQ(others, std::filesystem::perms::none) << name;
    }
}

TEST(DatabaseTest, UsesTheDurableSettings)
{
    const TempFolder folder;
    Database database{databaseIn(folder, "a.db")};
    database.write([](Connection &connection) {
        EXPECT_EQ(connection.value<std::string>("PRAGMA journal_mode"), "wal");
        EXPECT_EQ(connection.value<long long>("PRAGMA synchronous"), 2); // FULL
        EXPECT_EQ(connection.value<long long>("PRAGMA foreign_keys"), 1);
        EXPECT_GT(connection.value<long long>("PRAGMA busy_timeout"), 0); // one try of several
    });
}

TEST(DatabaseTest, FailedWorkLeavesNothingBehind)
{
    const TempFolder folder;
    Database database{databaseIn(folder, "a.db")};
    EXPECT_THROW(database.write([](Connection &connection) {
        insertCompany(connection, "i");
        throw std::runtime_error{"no"};
    }),
                 std::runtime_error);
    EXPECT_EQ(companies(database), 0);
    database.write([](Connection &connection) { insertCompany(connection, "i"); });
    EXPECT_EQ(companies(database), 1);
}

TEST(DatabaseTest, BrokenRulesOfTheSchemaAreConstraintErrors)
{
    const TempFolder folder;
    Database database{databaseIn(folder, "a.db")};
    EXPECT_EQ(kindOfFailure([&] { addOffice(database, {}); }),
              DatabaseError::Kind::Constraint); // no such company
    database.write([](Connection &connection) { insertCompany(connection, "i"); });
    EXPECT_EQ(kindOfFailure(
                  [&] { database.write([](Connection &connection) { insertCompany(connection, "i"); }); }),
              DatabaseError::Kind::Constraint);
}

TEST(DatabaseTest, WhoeverReadsCannotWrite)
{
    const TempFolder folder;
    Database database{databaseIn(folder, "a.db")};
    EXPECT_THROW(database.read([](Connection &connection) { insertCompany(connection, "i"); }),
                 DatabaseError);
    EXPECT_EQ(companies(database), 0);
    database.write([](Connection &connection) { insertCompany(connection, "i"); });
    EXPECT_EQ(companies(database), 1) << "the connection is of use again";
}

TEST(DatabaseTest, ReadersSeeOneUnchangingView)
{
    const TempFolder folder;
    Database database{databaseIn(folder, "a.db")};
    database.read([&](Connection &connection) {
        EXPECT_EQ(connection.value<long long>("SELECT COUNT(*) FROM companies"), 0);
        database.write([](Connection &writer) { insertCompany(writer, "i"); });
        EXPECT_EQ(connection.value<long long>("SELECT COUNT(*) FROM companies"), 0);
    });
    EXPECT_EQ(companies(database), 1);
}

TEST(DatabaseTest, ReadersCannotWrite)
{
    const TempFolder folder;
    Database database{databaseIn(folder, "a.db")};
    EXPECT_EQ(
        kindOfFailure([&] { database.read([](Connection &connection) { insertCompany(connection, "i"); }); }),
        DatabaseError::Kind::ReadOnly);
}

TEST(DatabaseTest, ManyWritersTakeTurns)
{
    const TempFolder folder;
    Database database{databaseIn(folder, "a.db")};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread)
        threads.emplace_back([&database, thread] {
            for (int i = 0; i < 10; ++i)
                database.write([&](Connection &connection) {
                    insertCompany(connection, std::to_string(thread) + "-" + std::to_string(i));
                });
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(companies(database), 80);
}

TEST(DatabaseTest, TwoProgramsOnOneFileTakeTurnsWithoutLosingAnUpdate)
{
    const TempFolder folder;
    Database first{databaseIn(folder, "a.db")};
    Database second{databaseIn(folder, "a.db")};
    first.write([](Connection &connection) { insertCompany(connection, "0"); });
    const auto countUp = [](Connection &connection) {
        const auto before = connection.value<std::string>("SELECT code FROM companies");
        connection.execute("UPDATE companies SET code = :code", std::to_string(std::stoi(before) + 1));
    };
    std::vector<std::thread> threads;
    std::atomic<int> failures = 0;
    for (Database *database : {&first, &second, &first, &second})
        threads.emplace_back([&, database] {
            for (int i = 0; i < 25; ++i) {
                try {
                    database->write(countUp);
                } catch (const DatabaseError &) {
                    ++failures;
                }
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    // PostgreSQL may give up on one that always met others, but then says so.
    EXPECT_LE(failures, testsPostgres() ? 50 : 0);
    const auto counted = first.read(
        [](Connection &connection) { return connection.value<std::string>("SELECT code FROM companies"); });
    EXPECT_EQ(counted, std::to_string(100 - failures));
}

TEST(DatabaseTest, LockedByAnotherProcessIsBusyAfterTheWait)
{
    const TempFolder folder;
    Database database{databaseIn(folder, "a.db"), {.timeout = std::chrono::seconds{1}}};
    WriteBlocker other{databaseIn(folder, "a.db")};
    EXPECT_EQ(kindOfFailure(
                  [&] { database.write([](Connection &connection) { insertCompany(connection, "i"); }); }),
              DatabaseError::Kind::Busy);
    other.end();
    database.write([](Connection &connection) { insertCompany(connection, "i"); });
    EXPECT_EQ(companies(database), 1);
}

TEST(DatabaseTest, LimitOfTheFileIsKeptAndLeavesItUsable)
{
    const TempFolder folder;
    Database database{databaseIn(folder, "a.db"), {.maximumBytes = 300 * 1024}};
    int written = 0;
    EXPECT_EQ(kindOfFailure([&] {
                  for (; written < 1000; ++written)
                      database.write([&](Connection &connection) {
                          insertCompany(connection, std::to_string(written) + std::string(4000, 'x'));
                      });
              }),
              DatabaseError::Kind::Full);
    EXPECT_GT(written, 0);
    EXPECT_EQ(companies(database), written);
    database.write([](Connection &connection) { connection.execute("DELETE FROM companies"); });
    EXPECT_EQ(companies(database), 0);
}

TEST(DatabaseTest, FileThatIsNoDatabaseIsRefused)
{
    const TempFolder folder;
    std::ofstream{databaseIn(folder, "a.db")} << std::string(10'000, 'x');
    try {
        Database database{databaseIn(folder, "a.db")};
        FAIL();
    } catch (const DatabaseError &error) {
        EXPECT_EQ(error.kind(), DatabaseError::Kind::Damaged);
        EXPECT_NE(std::string{error.what()}.find("a.db cannot be used: file is not a database."),
                  std::string::npos);
    }
    EXPECT_EQ(readFile(databaseIn(folder, "a.db")), std::string(10'000, 'x'));
}

TEST(DatabaseTest, MissingFolderIsSaidPlainly)
{
    const TempFolder folder;
    try {
        Database database{databaseIn(folder, "none/a.db")};
        FAIL();
    } catch (const DatabaseError &error) {
        EXPECT_NE(std::string{error.what()}.find("No such file or directory."), std::string::npos);
    }
}

TEST(DatabaseTest, NewerSchemaIsRefusedAndLeftAlone)
{
    const TempFolder folder;
    {
        Database database{databaseIn(folder, "a.db")};
        database.write([](Connection &connection) {
            connection.execute("INSERT INTO schema_migrations (version) VALUES (:version)",
                               schemaVersion() + 1);
        });
    }
    try {
        Database database{databaseIn(folder, "a.db")};
        FAIL();
    } catch (const DatabaseError &error) {
        EXPECT_EQ(error.kind(), DatabaseError::Kind::Newer);
        EXPECT_NE(std::string{error.what()}.find("newer version of clockwell-server"), std::string::npos);
    }
}

TEST(DatabaseTest, ReopeningKeepsDataAndSchema)
{
    const TempFolder folder;
    {
        Database database{databaseIn(folder, "a.db")};
        database.write([](Connection &connection) { insertCompany(connection, "i"); });
    }
    Database database{databaseIn(folder, "a.db")};
    EXPECT_EQ(companies(database), 1);
    database.read([](Connection &connection) {
        EXPECT_EQ(connection.value<long long>("SELECT MAX(version) FROM schema_migrations"), schemaVersion());
    });
}

} // namespace clockwell::server::test
