#include "Midnight.h"
#include "ReportFixture.h"
#include "TestDatabase.h"

namespace clockwell::server::test {

namespace {

/// "yyyy-MM-dd" of the last row of the days; empty when there is none.
std::string lastDayIn(const ProcessResult &result)
{
    const auto rows = nlohmann::json::parse(result.output);
    return rows.empty() ? std::string{} : rows.back().at("workDate").get<std::string>();
}

} // namespace

TEST_F(AdminReportTest, MonthIsOneRowForEachEmployee)
{
    const ProcessResult result = may();
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(result.output,
              summaryHeader +
                  "2026-05,Head Office,Kim Sample,kim@example.org,APPROVED,4,1,25,4,1,1,1104,\r\n");
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

TEST_F(AdminReportTest, EndsAtTheLastDay)
{
    world.database().write([](Connection &connection) {
        connection.execute("UPDATE employees SET last_day = '2026-05-26' WHERE id = 'employee-1'");
    });
    EXPECT_EQ(may().output,
              summaryHeader +
                  "2026-05,Head Office,Kim Sample,kim@example.org,APPROVED,4,1,25,1,1,1,1104,2026-05-26\r\n");
    const auto days = nlohmann::json::parse(may({"--days", "--json"}).output);
    EXPECT_EQ(days.size(), 6U);
    EXPECT_EQ(days.back().at("workDate"), "2026-05-26");
    EXPECT_EQ(nlohmann::json::parse(may({"--json"}).output).at(0).at("lastDay"), "2026-05-26");
    EXPECT_EQ(report(world.databaseFile(), {"2026-06"}).output, summaryHeader);
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
    EXPECT_EQ(annex.output, summaryHeader + "2026-05,Annex,Bo,b@example.org,APPROVED,0,0,0,31,0,0,0,\r\n");
    EXPECT_EQ(may({"--office", "Nowhere"}).exitCode, 3);
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
    passMidnight(TimeZone::ofMachine());
    const TempFolder folder;
    const std::string file = databaseIn(folder, "demo.db");
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
        for (const auto &candidate : nlohmann::json::parse(report(file, {toText(month), "--json"}).output))
            if (candidate.at("email") == "demo@clockwell.example")
                row = candidate;
        for (const char *key : {"presentDays", "lateDays", "totalLateMinutes", "absentDays", "leaveDays",
                                "halfDays", "totalWorkingMinutes"})
            EXPECT_EQ(row.at(key), summary.at(key)) << toText(month) << " " << key;
    }
}

} // namespace clockwell::server::test
