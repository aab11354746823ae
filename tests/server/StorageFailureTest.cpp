#include "World.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

namespace clockwell::server::test {

namespace {

Settings patientSettings()
{
    Settings settings = World::cheap();
    settings.sessions.access = std::chrono::hours{24 * 365 * 10}; // one sign-in for the whole test
    return settings;
}

void addFiller(Database &database)
{
    for (int i = 0; i < 1000; ++i)
        addHoliday(database, "office-1", "filler-" + std::to_string(i), std::string(3500, 'x'));
}

long long countRows(Database &database, const std::string &table)
{
    return database.read(
        [&](Connection &connection) { return connection.value<long long>("SELECT COUNT(*) FROM " + table); });
}

/// Overwrites the first page of a table. nobody has the file open.
void damageTable(const std::string &file, const std::string &table)
{
    long long page = 0;
    {
        Connection connection{file, 1};
        connection.execute("PRAGMA journal_mode = DELETE"); // nothing stays in a write-ahead log
        page = connection.value<long long>(
            "SELECT rootpage FROM sqlite_master WHERE type = 'table' AND name = :name", table);
    }
    constexpr long long pageBytes = 4096;
    std::fstream stream{file, std::ios::binary | std::ios::in | std::ios::out};
    stream.seekp((page - 1) * pageBytes);
    stream << std::string(pageBytes, '\xff');
}

} // namespace

TEST(StorageFailureTest, FullStorageRefusesPunchesAndLosesNone)
{
    World world{"2026-01-01T09:00:00Z", patientSettings(), {.maximumBytes = 400 * 1024}};
    addOffice(world.database(), {});
    addEmployee(world.database(), {});
    const std::string token = world.token();
    EXPECT_THROW(addFiller(world.database()), DatabaseError);
    long long acknowledged = 0;
    Reply reply = world.punch(token);
    for (int day = 0; day < 500 && reply.status == 200; ++day) { // the last free bytes
        ++acknowledged;
        world.advance(std::chrono::hours{24});
        reply = world.punch(token);
    }
    EXPECT_EQ(reply.status, 503);
    EXPECT_EQ(reply.error(), "STORAGE_FULL");
    EXPECT_EQ(reply.headers.at("retry-after"), "60");
    EXPECT_NE(reply.message().find("Nothing was recorded"), std::string::npos);
    EXPECT_EQ(countRows(world.database(), "punches"), acknowledged);
    EXPECT_EQ(countRows(world.database(), "attendance"), acknowledged);
    EXPECT_EQ(world.get("/api/attendance/today", token).json().at("canCheckIn"), true);
    world.database().write([](Connection &connection) { connection.execute("DELETE FROM holidays"); });
    EXPECT_EQ(world.punch(token).json().at("type"), "IN");
}

TEST(StorageFailureTest, LockedDatabaseIsBusyAndRecordsNothing)
{
    World world{"2026-06-10T09:00:00Z", World::cheap(), {.timeout = std::chrono::seconds{1}}};
    addOffice(world.database(), {});
    addEmployee(world.database(), {});
    const std::string token = world.token();
    WriteBlocker other{world.databaseFile()};
    const Reply reply = world.punch(token);
    EXPECT_EQ(reply.status, 503);
    EXPECT_EQ(reply.error(), "BUSY");
    EXPECT_EQ(reply.headers.at("retry-after"), "2");
    EXPECT_EQ(world.get("/api/attendance/today", token).status, 200); // reading is not held up
    other.end();
    EXPECT_EQ(countRows(world.database(), "punches"), 0);
    EXPECT_EQ(world.punch(token).status, 200);
}

TEST(StorageFailureTest, DamagedTableIsSaidAndOtherTablesStillWork)
{
    const TempFolder folder;
    const std::string file = folder.file("a.db");
    {
        Database database{file};
        addCompany(database);
        addOffice(database, {});
        addEmployee(database, {});
    }
    damageTable(file, "offices");
    Database database{file};
    const auto now = [] { return instantOf("2026-06-10T09:00:00Z"); };
    const Application application{database, now, World::cheap()};
    Request login;
    login.method = "POST";
    login.path = "/api/auth/login";
    login.body = R"({"email":"kim@example.org","password":"Correct-Horse-7","deviceId":"d"})";
    const Response signedIn = application.handle(login);
    ASSERT_EQ(signedIn.status, 200);
    Request today;
    today.method = "GET";
    today.path = "/api/attendance/today";
    today.authorization =
        "Bearer " + nlohmann::json::parse(signedIn.body).at("accessToken").get<std::string>();
    const Response reply = application.handle(today);
    EXPECT_EQ(reply.status, 500);
    EXPECT_EQ(nlohmann::json::parse(reply.body).at("error"), "STORAGE_DAMAGED");
}

TEST(StorageFailureTest, ReadOnlyFileIsRefusedAtTheStart)
{
    const TempFolder folder;
    const std::string file = folder.file("a.db");
    {
        Database database{file};
    }
    ASSERT_EQ(::chmod(file.c_str(), 0444), 0);
    ASSERT_EQ(::chmod(folder.file(".").c_str(), 0755), 0);
    const pid_t child = ::fork(); // permissions do not bind root, so the child becomes somebody else
    ASSERT_GE(child, 0);
    if (child == 0) {
        constexpr uid_t nobody = 65534;
        if (::geteuid() == 0 && ::setuid(nobody) != 0)
            ::_exit(3);
        try {
            Database database{file};
        } catch (const DatabaseError &error) {
            ::_exit(error.kind() == DatabaseError::Kind::ReadOnly ? 0 : 1);
        }
        ::_exit(2);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

} // namespace clockwell::server::test
