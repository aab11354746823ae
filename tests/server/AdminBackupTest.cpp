#include "BackupFixture.h"
#include "server/storage/Migrations.h"

#include <sys/stat.h>

#include <atomic>
#include <filesystem>
#include <thread>

namespace clockwell::server::test {

using BackupTest = BackupFixture;

TEST_F(BackupTest, CopyIsCompletePrivateAndNeedsNoCompanions)
{
    const ProcessResult result = admin({"backup", copy});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(result.output, "Backed up " + file + " to " + copy + ": 1 employee, 0 days of attendance.\n");
    struct stat facts
    {};
    ASSERT_EQ(::stat(copy.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777U, 0600U);
    EXPECT_EQ(fileCount(), 2U);
    EXPECT_EQ(query(copy, "PRAGMA journal_mode"), "delete");
    EXPECT_EQ(query(copy, "PRAGMA integrity_check"), "ok");
    EXPECT_EQ(nameIn(copy), "Kim Sample");
}

TEST_F(BackupTest, JsonSaysWhatWasCopied)
{
    const auto json = nlohmann::ordered_json::parse(admin({"backup", copy, "--json"}).output);
    EXPECT_EQ(json.dump(), R"({"file":")" + copy + R"(","schema":)" + std::to_string(schemaVersion()) +
                               R"(,"employees":1,"attendanceDays":0})");
}

TEST_F(BackupTest, FileIsReplacedOnlyWhenAskedFor)
{
    admin({"backup", copy});
    rename(file, "Later");
    const ProcessResult again = admin({"backup", copy});
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_TRUE(contains(again.errors, "--force replaces it")) << again.errors;
    EXPECT_EQ(nameIn(copy), "Kim Sample");
    EXPECT_EQ(admin({"backup", copy, "--force"}).exitCode, 0);
    EXPECT_EQ(nameIn(copy), "Later");
}

TEST_F(BackupTest, DatabaseItselfIsNeverTheTarget)
{
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.file(""));
    for (const char *target :
         {"clockwell.db", "./clockwell.db", "clockwell.db-wal", "clockwell.db-shm", "clockwell.db-journal"}) {
        const ProcessResult result = admin("clockwell.db", {"backup", target, "--force"});
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_TRUE(contains(result.errors, "belongs to the database itself")) << target << result.errors;
    }
    std::filesystem::current_path(before);
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(BackupTest, StrayCompanionOfTheTargetIsNotInherited)
{
    for (const char *suffix : {"-wal", "-journal", "-shm"}) {
        std::ofstream{copy + suffix} << "x";
        const ProcessResult result = admin({"backup", copy, "--force"});
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_TRUE(contains(result.errors, copy + suffix)) << result.errors;
        std::filesystem::remove(copy + suffix);
    }
    EXPECT_FALSE(std::filesystem::exists(copy));
}

TEST_F(BackupTest, DamagedDatabaseIsReportedAndNotBackedUp)
{
    damage(file, "punches");
    const ProcessResult result = admin({"backup", copy});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.errors, "damaged")) << result.errors;
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(BackupTest, FailedWriteLeavesNothingAndTheOldBackupStays)
{
    admin({"backup", copy});
    rename(file, "Later");
    const auto bytes = std::filesystem::file_size(file);
    ProcessResult result;
    {
        const FileSizeLimit limit{bytes / 2};
        result = admin({"backup", copy, "--force"});
    }
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.errors, "There is no backup: ")) << result.errors;
    EXPECT_EQ(nameIn(copy), "Kim Sample");
    EXPECT_EQ(fileCount(), 2U);
}

TEST_F(BackupTest, WhatAKilledServerLeftInItsLogIsInTheBackup)
{
    {
        const ServerProcess server{file};
        const Reply login =
            send(server.port(), "POST", "/api/auth/login", "",
                 R"({"email":"kim@example.org","password":"Correct-Horse-7","deviceId":"d"})");
        ASSERT_EQ(send(server.port(), "POST", "/api/attendance/punch", login.json().at("accessToken"),
                       punchBody(48.0, 11.0, 5, "d"))
                      .status,
                  200);
    }
    ASSERT_GT(std::filesystem::file_size(file + "-wal"), 0U);
    EXPECT_TRUE(contains(admin({"backup", copy}).output, "1 day of attendance."));
}

TEST_F(BackupTest, EachCopyOfABusyServerIsOfOneMoment)
{
    constexpr int people = 60;
    {
        Database database{file};
        for (int i = 0; i < people; ++i)
            addEmployee(database,
                        {.id = "e" + std::to_string(i), .email = std::to_string(i) + "@example.org"});
    }
    const ServerProcess server{file};
    std::atomic<long long> acknowledged = 0;
    std::atomic<int> failures = 0;
    std::thread client{[&] {
        for (int i = 0; i < people; ++i) {
            const std::string email = std::to_string(i) + "@example.org";
            const Reply login = send(
                server.port(), "POST", "/api/auth/login", "",
                nlohmann::json{{"email", email}, {"password", "Correct-Horse-7"}, {"deviceId", "d"}}.dump());
            const Reply punch = send(server.port(), "POST", "/api/attendance/punch",
                                     login.json().at("accessToken"), punchBody(48.0, 11.0, 5, "d"));
            if (punch.status == 200)
                ++acknowledged;
            else
                ++failures;
        }
    }};
    int copies = 0;
    for (bool more = true; more && copies < 200; ++copies) {
        const long long promised = acknowledged;
        more = promised < people && failures == 0;
        ASSERT_EQ(admin({"backup", copy, "--force"}).exitCode, 0);
        const auto punches = std::stoll(query(copy, "SELECT CAST(COUNT(*) AS TEXT) FROM punches"));
        EXPECT_GE(punches, promised);
        EXPECT_EQ(query(copy, "SELECT CAST(COUNT(*) AS TEXT) FROM attendance"), std::to_string(punches));
        EXPECT_EQ(query(copy, "PRAGMA integrity_check"), "ok");
    }
    client.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(acknowledged, people);
    EXPECT_GE(copies, 3);
}

} // namespace clockwell::server::test
