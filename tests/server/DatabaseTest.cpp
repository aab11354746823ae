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

void insertInstitute(Connection &connection, const std::string &id)
{
    connection.execute("INSERT INTO institutes (id, name, code) VALUES (:id, 'Name', :code)", id, id);
}

long long institutes(Database &database)
{
    return database.read([](Connection &connection) {
        return connection.value<long long>("SELECT COUNT(*) FROM institutes");
    });
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
    Database database{folder.file("a.db")};
    const auto row = database.write([](Connection &connection) {
        connection.execute("CREATE TABLE sample (text VARCHAR(99), number BIGINT, real DOUBLE PRECISION,"
                           " none VARCHAR(9), some BIGINT)");
        connection.execute("INSERT INTO sample VALUES (:a, :b, :c, :d, :e)", "O'Hara; \xE2\x82\xAC",
                           9'007'199'254'740'993LL, 0.1, std::optional<std::string>{},
                           std::optional<long long>{-7});
        return connection.first<Row>("SELECT text, number, real, none, some FROM sample").value();
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
    const std::string file = folder.file("my attendance.db");
    Database database{file};
    database.write([](Connection &connection) { insertInstitute(connection, "i"); });
    for (const std::string &name : {file, file + "-wal", file + "-shm"}) {
        const auto others = std::filesystem::status(name).permissions() &
                            (std::filesystem::perms::group_all | std::filesystem::perms::others_all);
        EXPECT_EQ(others, std::filesystem::perms::none) << name;
    }
}

TEST(DatabaseTest, UsesTheDurableSettings)
{
    const TempFolder folder;
    Database database{folder.file("a.db")};
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
    Database database{folder.file("a.db")};
    EXPECT_THROW(database.write([](Connection &connection) {
        insertInstitute(connection, "i");
        throw std::runtime_error{"no"};
    }),
                 std::runtime_error);
    EXPECT_EQ(institutes(database), 0);
    database.write([](Connection &connection) { insertInstitute(connection, "i"); });
    EXPECT_EQ(institutes(database), 1);
}

TEST(DatabaseTest, BrokenRulesOfTheSchemaAreConstraintErrors)
{
    const TempFolder folder;
    Database database{folder.file("a.db")};
    EXPECT_EQ(kindOfFailure([&] { addOffice(database, {}); }),
              DatabaseError::Kind::Constraint); // no such institute
    database.write([](Connection &connection) { insertInstitute(connection, "i"); });
    EXPECT_EQ(kindOfFailure(
                  [&] { database.write([](Connection &connection) { insertInstitute(connection, "i"); }); }),
              DatabaseError::Kind::Constraint);
}

TEST(DatabaseTest, ReadersSeeOneUnchangingView)
{
    const TempFolder folder;
    Database database{folder.file("a.db")};
    database.read([&](Connection &connection) {
        EXPECT_EQ(connection.value<long long>("SELECT COUNT(*) FROM institutes"), 0);
        database.write([](Connection &writer) { insertInstitute(writer, "i"); });
        EXPECT_EQ(connection.value<long long>("SELECT COUNT(*) FROM institutes"), 0);
    });
    EXPECT_EQ(institutes(database), 1);
}

TEST(DatabaseTest, ReadersCannotWrite)
{
    const TempFolder folder;
    Database database{folder.file("a.db")};
    EXPECT_EQ(kindOfFailure(
                  [&] { database.read([](Connection &connection) { insertInstitute(connection, "i"); }); }),
              DatabaseError::Kind::ReadOnly);
}

TEST(DatabaseTest, ManyWritersTakeTurns)
{
    const TempFolder folder;
    Database database{folder.file("a.db")};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread)
        threads.emplace_back([&database, thread] {
            for (int i = 0; i < 10; ++i)
                database.write([&](Connection &connection) {
                    insertInstitute(connection, std::to_string(thread) + "-" + std::to_string(i));
                });
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(institutes(database), 80);
}

TEST(DatabaseTest, TwoProgramsOnOneFileTakeTurnsWithoutLosingAnUpdate)
{
    const TempFolder folder;
    Database first{folder.file("a.db")};
    Database second{folder.file("a.db")};
    first.write([](Connection &connection) { insertInstitute(connection, "0"); });
    const auto countUp = [](Connection &connection) {
        const auto before = connection.value<std::string>("SELECT code FROM institutes");
        connection.execute("UPDATE institutes SET code = :code", std::to_string(std::stoi(before) + 1));
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
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(first.read([](Connection &connection) {
        return connection.value<std::string>("SELECT code FROM institutes");
    }),
              "100");
}

TEST(DatabaseTest, LockedByAnotherProcessIsBusyAfterTheWait)
{
    const TempFolder folder;
    Database database{folder.file("a.db"), {.patience = std::chrono::seconds{1}}};
    Connection other{folder.file("a.db"), 1};
    other.execute("BEGIN IMMEDIATE");
    EXPECT_EQ(kindOfFailure(
                  [&] { database.write([](Connection &connection) { insertInstitute(connection, "i"); }); }),
              DatabaseError::Kind::Busy);
    other.execute("ROLLBACK");
    database.write([](Connection &connection) { insertInstitute(connection, "i"); });
    EXPECT_EQ(institutes(database), 1);
}

TEST(DatabaseTest, LimitOfTheFileIsKeptAndLeavesItUsable)
{
    const TempFolder folder;
    Database database{folder.file("a.db"), {.maximumBytes = 300 * 1024}};
    int written = 0;
    EXPECT_EQ(kindOfFailure([&] {
                  for (; written < 1000; ++written)
                      database.write([&](Connection &connection) {
                          insertInstitute(connection, std::to_string(written) + std::string(4000, 'x'));
                      });
              }),
              DatabaseError::Kind::Full);
    EXPECT_GT(written, 0);
    EXPECT_EQ(institutes(database), written);
    database.write([](Connection &connection) { connection.execute("DELETE FROM institutes"); });
    EXPECT_EQ(institutes(database), 0);
}

TEST(DatabaseTest, FileThatIsNoDatabaseIsRefused)
{
    const TempFolder folder;
    std::ofstream{folder.file("a.db")} << std::string(10'000, 'x');
    try {
        Database database{folder.file("a.db")};
        FAIL();
    } catch (const DatabaseError &error) {
        EXPECT_EQ(error.kind(), DatabaseError::Kind::Damaged);
        EXPECT_NE(std::string{error.what()}.find("a.db cannot be used: file is not a database."),
                  std::string::npos);
    }
    EXPECT_EQ(readFile(folder.file("a.db")), std::string(10'000, 'x'));
}

TEST(DatabaseTest, MissingFolderIsSaidPlainly)
{
    const TempFolder folder;
    try {
        Database database{folder.file("none/a.db")};
        FAIL();
    } catch (const DatabaseError &error) {
        EXPECT_NE(std::string{error.what()}.find("No such file or directory."), std::string::npos);
    }
}

TEST(DatabaseTest, NewerSchemaIsRefusedAndLeftAlone)
{
    const TempFolder folder;
    {
        Database database{folder.file("a.db")};
        database.write([](Connection &connection) {
            connection.execute("INSERT INTO schema_migrations (version) VALUES (:version)",
                               schemaVersion() + 1);
        });
    }
    try {
        Database database{folder.file("a.db")};
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
        Database database{folder.file("a.db")};
        database.write([](Connection &connection) { insertInstitute(connection, "i"); });
    }
    Database database{folder.file("a.db")};
    EXPECT_EQ(institutes(database), 1);
    database.read([](Connection &connection) {
        EXPECT_EQ(connection.value<long long>("SELECT MAX(version) FROM schema_migrations"), schemaVersion());
    });
}

} // namespace clockwell::server::test
