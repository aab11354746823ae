#include "BackupFixture.h"

#include <filesystem>
#include <thread>

namespace clockwell::server::test {

namespace {

constexpr int fillerRows = 2000; // of 4 kB: so that the end of a process can meet every step

} // namespace

/// Two large databases, told apart by the name of the employee and by every one of many rows.
class RestoreRaceTest : public BackupFixture
{
protected:
    RestoreRaceTest()
    {
        enlarge(file, 'a');
        rename(file, "Before");
        fill(copy);
        enlarge(copy, 'b');
        rename(copy, "Backup");
        for (const std::string &name : {file, copy})
            execute(name, "PRAGMA journal_mode = DELETE");
    }

    static void enlarge(const std::string &name, char letter)
    {
        Database{name}.write([letter](Connection &connection) {
            for (int i = 0; i < fillerRows; ++i)
                connection.execute(
                    "INSERT INTO holidays (office_id, day, name) VALUES ('office-1', :day, :name)",
                    "filler-" + std::to_string(i), std::string(4000, letter));
        });
    }
    /// Whether the file is one of the two databases, all of it; returns which one.
    static std::string wholeDatabase(const std::string &name)
    {
        Connection connection{name, 1};
        EXPECT_EQ(connection.value<std::string>("PRAGMA integrity_check"), "ok");
        const auto who = connection.value<std::string>("SELECT full_name FROM employees");
        EXPECT_EQ(connection.value<long long>("SELECT COUNT(*) FROM holidays WHERE name = :name",
                                              std::string(4000, who == "Backup" ? 'b' : 'a')),
                  fillerRows);
        return who;
    }
};

TEST_F(RestoreRaceTest, KilledAtAnyMomentItHasDoneEverythingOrNothing)
{
    const std::string before = folder.file("pristine.db");
    std::filesystem::copy_file(file, before);
    const std::vector<std::string> restore{"admin", "--database", file, "restore", copy, "--yes"};
    const auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(runServer(restore).exitCode, 0);
    const auto whole =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    std::filesystem::copy_file(before, file, std::filesystem::copy_options::overwrite_existing);
    int interrupted = 0;
    int restored = 0;
    for (int round = 0; round < 200 && restored < 3;
         ++round) { // up to five times as long as it took undisturbed
        const ProcessResult result = runServer(restore, whole * round / 40);
        const std::string now = wholeDatabase(file);
        EXPECT_EQ(wholeDatabase(copy), "Backup");
        EXPECT_TRUE(result.exitCode != 0 || now == "Backup");
        interrupted += result.exitCode == -1 ? 1 : 0;
        restored += now == "Backup" ? 1 : 0;
        if (now == "Backup")
            std::filesystem::copy_file(before, file, std::filesystem::copy_options::overwrite_existing);
    }
    EXPECT_GE(interrupted, 3);
    EXPECT_EQ(restored, 3);
}

TEST_F(RestoreRaceTest, FailedWriteChangesNothing)
{
    ProcessResult result;
    {
        const FileSizeLimit limit{std::filesystem::file_size(copy) / 2};
        result = restore(copy);
    }
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.errors, "Nothing was changed")) << result.errors;
    EXPECT_EQ(wholeDatabase(file), "Before");
    EXPECT_EQ(fileCount(), 2U);
}

TEST_F(RestoreRaceTest, FailureWhileTheOldDatabaseIsKeptChangesNothing)
{
    const std::string small = folder.file("small.db");
    fill(small);
    ProcessResult result;
    {
        const FileSizeLimit limit{std::filesystem::file_size(file) / 2}; // more than the backup needs
        result = restore(small);
    }
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.errors, "Nothing was changed")) << result.errors;
    EXPECT_EQ(wholeDatabase(file), "Before");
    EXPECT_EQ(fileCount(), 3U);
}

TEST_F(RestoreRaceTest, ServerThatIsStartedMeanwhileWorksOnTheFileThatIsThere)
{
    int started = 0;
    for (int round = 0; round < 6 || (started == 0 && round < 60); ++round) {
        ProcessResult result;
        std::thread restoring{[&] { result = restore(copy); }};
        std::this_thread::sleep_for(std::chrono::milliseconds{round * 20});
        ServerProcess server{file};
        restoring.join();
        if (server.port() == 0)
            continue; // it found the database locked, and said so
        ++started;
        const Reply login =
            send(server.port(), "POST", "/api/auth/login", "",
                 R"({"email":"kim@example.org","password":"Correct-Horse-7","deviceId":"d"})");
        const std::string served = login.json().at("user").at("fullName");
        server.terminate();
        EXPECT_EQ(wholeDatabase(file), served);
        EXPECT_EQ(served == "Backup", result.exitCode == 0) << result.errors;
        EXPECT_EQ(query(file, "SELECT CAST(COUNT(*) AS TEXT) FROM token_families"), "1"); // of this sign-in
        rename(file, "Before");
        execute(file, "UPDATE holidays SET name = replace(name, 'b', 'a')");
        execute(file, "DELETE FROM access_tokens");
        execute(file, "DELETE FROM refresh_tokens");
        execute(file, "DELETE FROM token_families");
    }
    EXPECT_GE(started, 1);
}

} // namespace clockwell::server::test
