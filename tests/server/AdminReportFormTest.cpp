#include "ReportFixture.h"

#include <sys/stat.h>

#include <filesystem>

namespace clockwell::server::test {

namespace {

void execute(Database &database, const std::string &sql)
{
    database.write([&](Connection &connection) { connection.execute(sql); });
}

} // namespace

TEST_F(AdminReportTest, TextsCannotBecomeFormulasOrSteerTheTerminal)
{
    execute(world.database(), "UPDATE employees SET full_name = '=HYPERLINK(\"http://x\",\"K\"), Zoë\x1b'");
    execute(world.database(), "UPDATE employees SET email = '+kim@example.org'");
    EXPECT_TRUE(
        contains(may().output, ",\"'=HYPERLINK(\"\"http://x\"\",\"\"K\"\"), Zoë?\",'+kim@example.org,"))
        << may().output;
    EXPECT_EQ(nlohmann::json::parse(may({"--json"}).output).at(0).at("email"), "+kim@example.org");
}

TEST_F(AdminReportTest, FileIsPrivateAndReplacedOnlyWhenAskedFor)
{
    const TempFolder folder;
    const std::string file = folder.file("may.csv");
    const ProcessResult first = may({"--output", file});
    EXPECT_EQ(first.output, "Wrote 1 row to " + file + ".\n");
    const std::string written = readFile(file);
    EXPECT_EQ(written, may().output);
    struct stat facts
    {};
    ASSERT_EQ(::stat(file.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777U, 0600U);
    const ProcessResult again = may({"--days", "--output", file});
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_TRUE(contains(again.errors, "--force replaces it")) << again.errors;
    EXPECT_EQ(readFile(file), written);
    EXPECT_EQ(may({"--days", "--output", file, "--force"}).exitCode, 0);
    EXPECT_EQ(readFile(file), may({"--days"}).output);
    for (const auto &entry : std::filesystem::directory_iterator{folder.file("")})
        EXPECT_EQ(entry.path(), file); // nothing unfinished is left
}

TEST_F(AdminReportTest, OutputNeverHitsTheDatabaseOrAnythingButAFile)
{
    const TempFolder folder;
    const std::string alias = folder.file("alias");
    std::filesystem::create_hard_link(world.databaseFile(), alias);
    for (const std::string &target : {world.databaseFile(), world.databaseFile() + "-wal", alias})
        EXPECT_TRUE(contains(may({"--output", target, "--force"}).errors, "belongs to the database itself"))
            << target;
    std::filesystem::create_directory(folder.file("d"));
    EXPECT_EQ(may({"--output", folder.file("d"), "--force"}).exitCode, 1);
    EXPECT_EQ(may({"--output", folder.file("missing/may.csv")}).exitCode, 1);
    EXPECT_EQ(may({"--output", ""}).exitCode, 2);
    EXPECT_EQ(may({"--force"}).exitCode, 2);
    EXPECT_EQ(world.login().status, 200);
}

TEST_F(AdminReportTest, ByteOrderMarkIsWrittenOnlyWhenAskedFor)
{
    EXPECT_EQ(may({"--byte-order-mark"}).output, "\xEF\xBB\xBF" + may().output);
}

TEST_F(AdminReportTest, MonthIsChecked)
{
    for (const char *month :
         {"2026-13", "2026-00", "2026-5", "2026", "05-2026", "2026-05-01", "", " 2026-05"})
        EXPECT_EQ(report(world.databaseFile(), {month}).exitCode, 2) << month;
    EXPECT_EQ(runServer({"admin", "--database", world.databaseFile(), "report"}).exitCode, 2);
    const ProcessResult future = report(world.databaseFile(), {"9999-12"});
    EXPECT_EQ(future.exitCode, 1);
    EXPECT_TRUE(contains(future.errors, "The month 9999-12 has not begun yet.")) << future.errors;
}

TEST_F(AdminReportTest, NobodyIsAHeaderAndAnEmptyArray)
{
    EXPECT_EQ(report(world.databaseFile(), {"2019-12"}).output, summaryHeader);
    EXPECT_EQ(nlohmann::json::parse(report(world.databaseFile(), {"2019-12", "--json"}).output),
              nlohmann::json::array());
}

} // namespace clockwell::server::test
