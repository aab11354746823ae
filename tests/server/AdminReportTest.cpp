#include "ServerProcess.h"
#include "World.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

namespace clockwell::server::test {

namespace {

const std::string SummaryHeader =
    "month,office,fullName,email,accountStatus,presentDays,lateDays,totalLateMinutes,"
    "absentDays,leaveDays,halfDays,totalWorkingMinutes\r\n";

bool contains(const std::string &text, const std::string &part)
{
    return text.find(part) != std::string::npos;
}

ProcessResult report(const std::string &database, std::vector<std::string> words)
{
    words.insert(words.begin(), {"admin", "--database", database, "report"});
    return runServer(words);
}

void execute(Database &database, const std::string &sql)
{
    database.write([&](Connection &connection) { connection.execute(sql); });
}

/// "yyyy-MM-dd" of the last row of the days; empty when there is none.
std::string lastDayIn(const ProcessResult &result)
{
    const auto rows = nlohmann::json::parse(result.output);
    return rows.empty() ? std::string{} : rows.back().at("workDate").get<std::string>();
}

} // namespace

/// A server in Berlin with two weeks of May 2026 behind it: on time, late, half a day, never checked out, on
/// leave, absent and a holiday.
class AdminReportTest : public testing::Test
{
protected:
    AdminReportTest()
    {
        OfficeSpec office;
        office.zone = "Europe/Berlin";
        office.weekdays = 0b0011111;
        addOffice(world.database(), office);
        EmployeeSpec kim;
        kim.joinedOn = "2026-05-18";
        addEmployee(world.database(), kim);
        day("2026-05-18T07:15:30Z", "2026-05-18T16:05:00Z");
        day("2026-05-19T07:55:00Z", "2026-05-19T16:00:00Z"); // 25 minutes late
        day("2026-05-20T07:30:00Z", "2026-05-20T09:00:00Z");
        day("2026-05-21T07:30:00Z", "");
        addLeave(world.database(), "employee-1", "2026-05-22", "2026-05-22");
        addHoliday(world.database(), "office-1", "2026-05-25", "Whit Monday");
        world.setNow("2026-06-10T09:00:00Z");
    }

    void day(const std::string &checkIn, const std::string &checkOut)
    {
        for (const std::string &at : {checkIn, checkOut}) {
            if (at.empty())
                continue;
            world.setNow(at);
            EXPECT_EQ(world.punch(world.token()).status, 200) << at;
        }
    }
    ProcessResult may(std::vector<std::string> words = {}) const
    {
        words.insert(words.begin(), "2026-05");
        return report(world.databaseFile(), words);
    }

    World world{"2026-05-18T06:00:00Z"};
};

TEST_F(AdminReportTest, MonthIsOneRowForEachEmployee)
{
    const ProcessResult result = may();
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(result.output,
              SummaryHeader +
                  "2026-05,Head Office,Kim Sample,kim@example.org,APPROVED,4,1,25,4,1,1,1104\r\n");
}

TEST_F(AdminReportTest, FiguresAreThoseOfTheAppsSummary)
{
    const auto summary = world.get("/api/attendance/me/summary?month=2026-05", world.token()).json();
    const auto row = nlohmann::json::parse(may({"--json"}).output).at(0);
    ASSERT_EQ(summary.size(), 8U);
    for (const auto &[key, value] : summary.items())
        EXPECT_EQ(row.at(key), value) << key;
}

TEST_F(AdminReportTest, DaysAreShownOnTheOfficesClock)
{
    EXPECT_EQ(
        may({"--days"}).output,
        "workDate,office,timeZone,fullName,email,status,checkIn,checkOut,lateMinutes,earlyLeaveMinutes,"
        "workingMinutes,checkInAt,checkOutAt\r\n"
        "2026-05-18,Head Office,Europe/Berlin,Kim Sample,kim@example.org,ON_TIME,09:15:30,18:05:00,0,0,529,"
        "2026-05-18T07:15:30.000Z,2026-05-18T16:05:00.000Z\r\n"
        "2026-05-19,Head Office,Europe/Berlin,Kim Sample,kim@example.org,LATE,09:55:00,18:00:00,25,0,485,"
        "2026-05-19T07:55:00.000Z,2026-05-19T16:00:00.000Z\r\n"
        "2026-05-20,Head Office,Europe/Berlin,Kim Sample,kim@example.org,HALF_DAY,09:30:00,11:00:00,0,420,90,"
        "2026-05-20T07:30:00.000Z,2026-05-20T09:00:00.000Z\r\n"
        "2026-05-21,Head Office,Europe/Berlin,Kim Sample,kim@example.org,MISSING_CHECK_OUT,09:30:00,,0,,,"
        "2026-05-21T07:30:00.000Z,\r\n"
        "2026-05-22,Head Office,Europe/Berlin,Kim Sample,kim@example.org,ON_LEAVE,,,,,,,\r\n"
        "2026-05-26,Head Office,Europe/Berlin,Kim Sample,kim@example.org,ABSENT,,,,,,,\r\n"
        "2026-05-27,Head Office,Europe/Berlin,Kim Sample,kim@example.org,ABSENT,,,,,,,\r\n"
        "2026-05-28,Head Office,Europe/Berlin,Kim Sample,kim@example.org,ABSENT,,,,,,,\r\n"
        "2026-05-29,Head Office,Europe/Berlin,Kim Sample,kim@example.org,ABSENT,,,,,,,\r\n");
}

TEST_F(AdminReportTest, DaysOfTheJsonAgreeWithTheAppsHistory)
{
    const auto history = world.get("/api/attendance/me", world.token()).json();
    const auto days = nlohmann::json::parse(may({"--days", "--json"}).output);
    std::size_t compared = 0;
    for (const auto &record : history) {
        for (const auto &day : days) {
            if (day.at("workDate") != record.at("workDate"))
                continue;
            ++compared;
            for (const char *key :
                 {"status", "checkInAt", "checkOutAt", "lateMinutes", "earlyLeaveMinutes", "workingMinutes"})
                EXPECT_EQ(day.at(key), record.value(key, nlohmann::json{})) << day;
        }
    }
    EXPECT_EQ(compared, days.size());
    EXPECT_EQ(compared, 9U);
}

TEST_F(AdminReportTest, OnlyPeopleWhoWereApprovedAndHadJoinedAreListed)
{
    const auto emails = [this](const std::string &month) {
        std::string text;
        for (const auto &row : nlohmann::json::parse(report(world.databaseFile(), {month, "--json"}).output))
            text += row.at("email").get<std::string>() + " ";
        return text;
    };
    addEmployee(world.database(), {.id = "e2", .email = "p@example.org", .status = "PENDING"});
    addEmployee(world.database(), {.id = "e3", .email = "r@example.org", .status = "REJECTED"});
    addEmployee(world.database(),
                {.id = "e4", .name = "Al", .email = "s@example.org", .status = "SUSPENDED"});
    EXPECT_EQ(emails("2026-05"), "s@example.org kim@example.org ");
    EXPECT_EQ(emails("2026-04"), "s@example.org ");
}

TEST_F(AdminReportTest, OfficeIsFilteredAndEmployeesWithoutOneAreNamed)
{
    addOffice(world.database(), {.id = "office-2", .name = "Annex"});
    addEmployee(world.database(),
                {.id = "e2", .officeId = "office-2", .name = "Bo", .email = "b@example.org"});
    addEmployee(world.database(), {.id = "e3", .officeId = std::nullopt, .email = "c@example.org"});
    const ProcessResult all = may();
    EXPECT_LT(all.output.find("Annex"), all.output.find("Head Office")); // by office
    EXPECT_TRUE(contains(all.errors, "c@example.org is left out")) << all.errors;
    const ProcessResult annex = may({"--office", "annex"});
    EXPECT_EQ(annex.output, SummaryHeader + "2026-05,Annex,Bo,b@example.org,APPROVED,0,0,0,31,0,0,0\r\n");
    EXPECT_EQ(may({"--office", "Nowhere"}).exitCode, 3);
}

TEST_F(AdminReportTest, TextsCannotBecomeFormulasOrSteerTheTerminal)
{
    execute(world.database(),
            "UPDATE employees SET full_name = '=HYPERLINK(\"http://x\",\"K\"), Zoë' || CHAR(27)");
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
    EXPECT_EQ(report(world.databaseFile(), {"2019-12"}).output, SummaryHeader);
    EXPECT_EQ(nlohmann::json::parse(report(world.databaseFile(), {"2019-12", "--json"}).output),
              nlohmann::json::array());
}

TEST_F(AdminReportTest, EachOfficesOwnCalendarSaysWhatTodayIs)
{
    // Their clocks are 25 hours apart, so their dates always differ.
    const std::vector<std::string> zones{"Pacific/Kiritimati", "Pacific/Pago_Pago"};
    const Day before = TimeZone::named(zones.back())->dayOf(systemClock()()) - std::chrono::days{1};
    const std::string month = toText(monthOf(before));
    for (const std::string &zone : zones) {
        addOffice(world.database(), {.id = zone, .name = zone, .zone = zone});
        addEmployee(world.database(), {.id = zone, .officeId = zone, .email = zone + "@example.org"});
        const auto yesterday = [&] {
            const Day day = TimeZone::named(zone)->dayOf(systemClock()()) - std::chrono::days{1};
            return toText(std::min(day, lastDayOf(monthOf(before))));
        };
        const std::string early = yesterday();
        const std::string last =
            lastDayIn(report(world.databaseFile(), {month, "--days", "--json", "--office", zone}));
        EXPECT_TRUE(last == early || last == yesterday()) << zone << " " << last;
    }
}

TEST(AdminReportProcessTest, FiguresOfTheRunningMonthAreThoseOfTheRunningServer)
{
    const TempFolder folder;
    const std::string file = folder.file("demo.db");
    ASSERT_EQ(runServer({"demo", "--database", file}).exitCode, 0);
    const ServerProcess server{file};
    const std::string token =
        send(server.port(), "POST", "/api/auth/login", "",
             R"({"email":"demo@clockwell.example","password":"Clockwell-2026","deviceId":"d"})")
            .json()
            .at("accessToken");
    const Day today = TimeZone::ofMachine().dayOf(systemClock()());
    for (const Month month : {monthOf(today), monthOf(today) - std::chrono::months{1}}) {
        const auto summary =
            send(server.port(), "GET", "/api/attendance/me/summary?month=" + toText(month), token).json();
        nlohmann::json row;
        for (const auto &candidate : nlohmann::json::parse(report(file, {toText(month), "--json"}).output)) {
            if (candidate.at("email") == "demo@clockwell.example")
                row = candidate;
        }
        for (const char *key : {"presentDays", "lateDays", "totalLateMinutes", "absentDays", "leaveDays",
                                "halfDays", "totalWorkingMinutes"})
            EXPECT_EQ(row.at(key), summary.at(key)) << toText(month) << " " << key;
    }
}

} // namespace clockwell::server::test
