#include "BackupFixture.h"

#include <sys/stat.h>

#include <array>
#include <cstdio>
#include <filesystem>

namespace clockwell::server::test {

namespace {

std::vector<std::string> serve(const std::string &database)
{
    return {"serve", "--database", database, "--listen", "127.0.0.1:0"};
}

/// What a command of the shell prints, on standard error too.
std::string printedBy(const std::string &command)
{
    std::string text;
    std::FILE *const pipe = ::popen((command + " 2>&1").c_str(), "r");
    std::array<char, 512> part{};
    while (pipe != nullptr && std::fgets(part.data(), part.size(), pipe) != nullptr)
        text += part.data();
    if (pipe != nullptr)
        ::pclose(pipe);
    return text;
}

} // namespace

/// A file system of one megabyte, seen by nobody else.
class FullDiskTest : public testing::Test
{
protected:
    FullDiskTest() { std::filesystem::create_directory(disk); }

    /// Runs a line of the shell there and then the server, which has to say that the disk is full.
    void expectSaid(const std::string &before, const std::string &words) const
    {
        const std::string script = "mount -t tmpfs -o size=1m clockwell-test " + disk + " && cd " + disk +
                                   " && echo mounted || exit;" + before +
                                   ";timeout 20 " CLOCKWELL_SERVER_BINARY " " + words + "; echo exit $?";
        const std::string printed = printedBy("unshare --map-root-user --mount sh -c '" + script + "'");
        if (printed.find("mounted") == std::string::npos)
            GTEST_SKIP() << "mounting is not permitted here: " << printed;
        EXPECT_NE(printed.find("The database a.db cannot be used: database or disk is full."),
                  std::string::npos)
            << printed;
        EXPECT_NE(printed.find("exit 1\n"), std::string::npos) << printed;
    }

    static constexpr const char *fill = "cat /dev/zero >filler 2>/dev/null";
    static constexpr const char *serveWords = "serve --database a.db --listen 127.0.0.1:0";
    TempFolder folder;
    std::string disk = folder.file("disk");
};

TEST_F(FullDiskTest, NewDatabaseSaysSo)
{
    expectSaid(fill, serveWords);
    expectSaid(fill, "demo --database a.db");
}

TEST_F(FullDiskTest, DatabaseThatIsThereSaysSo)
{
    const std::string made = "timeout 20 " CLOCKWELL_SERVER_BINARY " demo --database a.db >made;";
    expectSaid(made + fill, serveWords);
    expectSaid(made + fill, "admin --database a.db employees list");
}

TEST_F(FullDiskTest, DiskThatFillsUpWhileTheSchemaIsMadeSaysSo)
{
    expectSaid("head -c 960K /dev/zero >filler", serveWords);
}

class StartFailureTest : public BackupFixture
{};

TEST_F(StartFailureTest, FileSizeLimitIsSaidLikeAFullDisk)
{
    const FileSizeLimit limit{8192};
    const ProcessResult result = runServer(serve(folder.file("new.db")));
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.errors, "cannot be used: database or disk is full.")) << result.errors;
}

TEST_F(StartFailureTest, DatabaseThatOthersMayReadIsRefused)
{
    for (const mode_t mode : {0640U, 0604U, 0620U, 0666U}) {
        ASSERT_EQ(::chmod(file.c_str(), mode), 0);
        for (const auto &words : {serve(file),
                                  {"demo", "--database", file},
                                  {"admin", "--database", file, "employees", "list"},
                                  {"admin", "--database", file, "backup", copy}}) {
            const ProcessResult result = runServer(words);
            EXPECT_EQ(result.exitCode, 1) << words.front();
            EXPECT_TRUE(contains(result.errors, "Try: chmod 600 " + file)) << result.errors;
        }
    }
    EXPECT_FALSE(std::filesystem::exists(copy));
    ASSERT_EQ(::chmod(file.c_str(), 0600), 0);
    EXPECT_NE(ServerProcess{file}.port(), 0);
}

TEST_F(StartFailureTest, CompanionOfTheDatabaseThatOthersMayReadIsRefused)
{
    ServerProcess server{file};
    rename(file, "Later"); // SQLite itself puts right the mode of a companion without content
    ASSERT_EQ(::chmod((file + "-wal").c_str(), 0644), 0);
    const std::string link = folder.file("link.db");
    std::filesystem::create_symlink(file, link);
    for (const std::string &name : {file, link}) {
        const ProcessResult result = admin(name, {"employees", "list"});
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_TRUE(contains(result.errors, "chmod 600 " + file + "-wal")) << result.errors;
    }
    EXPECT_EQ(server.terminate(), 0);
}

TEST_F(StartFailureTest, BackupIsNotPutIntoAFileThatOthersMayRead)
{
    ASSERT_EQ(admin({"backup", copy}).exitCode, 0);
    rename(file, "Later");
    ASSERT_EQ(::chmod(file.c_str(), 0644), 0);
    const ProcessResult result = restore(copy);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.errors, "Try: chmod 600 " + file)) << result.errors;
    EXPECT_EQ(nameIn(file), "Later");
}

} // namespace clockwell::server::test
