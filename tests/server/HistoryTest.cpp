#include "World.h"

#include "server/History.h"

#include <gtest/gtest.h>

#include <random>

namespace clockwell::server::test {

class HistoryTest : public testing::Test
{
protected:
    HistoryTest()
    {
        addOffice(world.database(), {.weekdays = 31}); // Monday to Friday
        addEmployee(world.database(), {.joinedOn = "2026-05-28"});
    }

    void work(const std::string &day, const std::string &in, const std::string &out = {})
    {
        world.setNow(day + "T" + in + "Z");
        ASSERT_EQ(world.punch(world.token()).status, 200);
        if (out.empty())
            return;
        world.setNow(day + "T" + out + "Z");
        ASSERT_EQ(world.punch(world.token()).status, 200);
    }
    nlohmann::json history() const { return world.get("/api/attendance/me", world.token()).json(); }
    nlohmann::json summary(const std::string &month) const
    {
        return world.get("/api/attendance/me/summary?month=" + month, world.token()).json();
    }
    std::string days() const
    {
        std::string text;
        for (const auto &record : history())
            text += record.at("workDate").get<std::string>().substr(5) + " " +
                    record.at("status").get<std::string>() + "\n";
        return text;
    }

    World world{"2026-06-01T00:00:00Z"};
};

TEST_F(HistoryTest, NewEmployeeHasNone)
{
    world.setNow("2026-05-28T12:00:00Z");
    EXPECT_EQ(history(), nlohmann::json::array());
    world.setNow("2026-05-20T12:00:00Z");
    EXPECT_EQ(history(), nlohmann::json::array());
}

TEST_F(HistoryTest, ListsWorkedAbsentAndLeaveDaysNewestFirst)
{
    addLeave(world.database(), "employee-1", "2026-06-05", "2026-06-09");
    addHoliday(world.database(), "office-1", "2026-06-04", "Spring Day");
    work("2026-06-01", "09:30:00", "18:00:00");
    work("2026-06-02", "10:00:00", "12:00:00");
    work("2026-06-10", "10:00:00");
    work("2026-06-11", "09:00:00");
    EXPECT_EQ(days(), "06-11 ON_TIME\n" // under way
                      "06-10 MISSING_CHECK_OUT\n"
                      "06-09 ON_LEAVE\n"
                      "06-08 ON_LEAVE\n"
                      "06-05 ON_LEAVE\n" // the weekend and the holiday do not count
                      "06-03 ABSENT\n"
                      "06-02 HALF_DAY\n"
                      "06-01 ON_TIME\n"
                      "05-29 ABSENT\n"
                      "05-28 ABSENT\n");
}

TEST_F(HistoryTest, RecordsCarryWhatIsKnown)
{
    work("2026-06-01", "09:50:00", "16:30:00");
    world.setNow("2026-06-02T08:00:00Z");
    const auto records = history();
    const auto worked = records.at(0);
    EXPECT_EQ(worked.at("status"), "LATE");
    EXPECT_EQ(worked.at("lateMinutes"), 20);
    EXPECT_EQ(worked.at("workingMinutes"), 400);
    EXPECT_EQ(worked.at("earlyLeaveMinutes"), 90);
    EXPECT_EQ(worked.at("checkInAt"), "2026-06-01T09:50:00.000Z");
    EXPECT_EQ(worked.at("checkOutAt"), "2026-06-01T16:30:00.000Z");
    EXPECT_NEAR(worked.at("checkOutDistanceMeters").get<double>(), 55.6, 0.1);
    EXPECT_EQ(records.at(1), nlohmann::json::parse(R"({"id":"absent-2026-05-29","workDate":"2026-05-29",
        "status":"ABSENT"})"));
}

TEST_F(HistoryTest, IdsAreUnique)
{
    addLeave(world.database(), "employee-1", "2026-06-05", "2026-06-09");
    work("2026-06-10", "10:00:00");
    std::set<std::string> ids;
    const auto records = history();
    for (const auto &record : records)
        ids.insert(record.at("id").get<std::string>());
    EXPECT_EQ(ids.size(), records.size());
}

TEST_F(HistoryTest, DayWorkedDuringLeaveIsAWorkedDay)
{
    addLeave(world.database(), "employee-1", "2026-06-01", "2026-06-01");
    world.setNow("2026-06-01T08:00:00Z");
    EXPECT_EQ(history().at(0).at("status"), "ON_LEAVE");
    work("2026-06-01", "09:00:00");
    EXPECT_EQ(history().at(0).at("status"), "ON_TIME");
    EXPECT_EQ(summary("2026-06").at("leaveDays"), 0);
}

TEST_F(HistoryTest, OverlappingLeavesCountOnce)
{
    addLeave(world.database(), "employee-1", "2026-06-01", "2026-06-03");
    addLeave(world.database(), "employee-1", "2026-06-02", "2026-06-02");
    world.setNow("2026-06-05T08:00:00Z");
    EXPECT_EQ(summary("2026-06").at("leaveDays"), 3);
}

TEST_F(HistoryTest, TodayIsNotYetAbsent)
{
    world.setNow("2026-05-29T23:59:59Z");
    EXPECT_EQ(days(), "05-28 ABSENT\n");
    world.setNow("2026-05-30T00:00:00Z");
    EXPECT_EQ(days(), "05-29 ABSENT\n05-28 ABSENT\n");
}

TEST_F(HistoryTest, SummaryAddsTheMonthUp)
{
    addLeave(world.database(), "employee-1", "2026-06-05", "2026-06-05");
    work("2026-06-01", "09:30:00", "18:00:00"); // 510 minutes
    work("2026-06-02", "10:00:00", "12:00:00"); // 120 minutes, 30 late
    work("2026-06-08", "09:45:00");             // 15 late, never checked out
    world.setNow("2026-06-10T07:00:00Z");
    EXPECT_EQ(summary("2026-06"), nlohmann::json::parse(R"({"month":"2026-06","presentDays":3,"lateDays":2,
        "totalLateMinutes":45,"absentDays":3,"leaveDays":1,"halfDays":1,"totalWorkingMinutes":630})"));
    EXPECT_EQ(summary("2026-05").at("absentDays"), 2);
}

TEST_F(HistoryTest, FutureMonthsAndThoseBeforeJoiningAreEmpty)
{
    world.setNow("2026-06-10T07:00:00Z");
    for (const char *month : {"2026-07", "9999-12", "2026-04", "0001-01"})
        EXPECT_EQ(summary(month), (nlohmann::json{{"month", month},
                                                  {"presentDays", 0},
                                                  {"lateDays", 0},
                                                  {"totalLateMinutes", 0},
                                                  {"absentDays", 0},
                                                  {"leaveDays", 0},
                                                  {"halfDays", 0},
                                                  {"totalWorkingMinutes", 0}}));
}

TEST_F(HistoryTest, MonthsAreSeparateAtTheYearsEnd)
{
    addLeave(world.database(), "employee-1", "2026-12-30", "2027-01-04"); // two working days on either side
    work("2026-12-29", "09:30:00", "17:30:00");
    world.setNow("2027-01-05T08:00:00Z");
    EXPECT_EQ(summary("2026-12").at("leaveDays"), 2);
    EXPECT_EQ(summary("2026-12").at("totalWorkingMinutes"), 480);
    EXPECT_EQ(summary("2027-01").at("leaveDays"), 2);
    EXPECT_EQ(summary("2027-01").at("totalWorkingMinutes"), 0);
}

TEST_F(HistoryTest, ReachesBackTwelveMonths)
{
    world.setNow("2027-09-15T08:00:00Z");
    EXPECT_EQ(history().back().at("workDate"), "2026-09-01");
    EXPECT_EQ(summary("2026-06").at("absentDays"), 22);
}

TEST_F(HistoryTest, OnesOwnRecordsOnly)
{
    addEmployee(world.database(), {.id = "e2", .email = "two@example.org", .joinedOn = "2026-06-01"});
    work("2026-06-01", "09:30:00", "18:00:00");
    const auto other = world.get("/api/attendance/me", world.token("two@example.org")).json();
    EXPECT_EQ(other, nlohmann::json::array());
}

TEST_F(HistoryTest, SummaryOfAnyMonthIsWhatItsRecordsAddUpTo)
{
    std::mt19937 random{20260610}; // the same days on every run
    const auto chance = [&random](int percent) {
        return std::uniform_int_distribution{1, 100}(random) <= percent;
    };
    const auto minutes = [&random](int most) {
        return std::chrono::minutes{std::uniform_int_distribution{0, most}(random)};
    };
    Punches punches{world.database(), world.clock(), std::chrono::seconds{0}};
    const Day first = parseDay("2026-08-01").value();
    const Day last = parseDay("2027-02-14").value();
    world.database().write([&](Connection &connection) {
        const Employee employee = findEmployeeById(connection, "employee-1").value();
        for (Day day = first; day <= last; day += std::chrono::days{1}) {
            const Instant morning{day.time_since_epoch() + std::chrono::hours{9}};
            if (weekdayIndex(day) > 4 || chance(15))
                continue;
            const PunchClaim claim{48.0, 11.0, 5, "dev-1", false};
            punches.punchAt(connection, employee, claim, morning + minutes(90));
            if (chance(90))
                punches.punchAt(connection, employee, claim, morning + std::chrono::hours{3} + minutes(600));
        }
    });
    addLeave(world.database(), "employee-1", "2026-09-25", "2026-10-06");
    addHoliday(world.database(), "office-1", "2026-12-25", "Winter Day");
    world.setNow("2027-02-14T21:00:00Z");
    const auto records = history();
    std::map<std::string, nlohmann::json> expected;
    for (const auto &record : records) {
        const std::string monthText = record.at("workDate").get<std::string>().substr(0, 7);
        auto &month = expected.try_emplace(monthText, nlohmann::json::object()).first->second;
        const auto add = [&month](const char *key, long long amount) {
            month[key] = month.value(key, 0LL) + amount;
        };
        const std::string status = record.at("status");
        add("presentDays", record.contains("checkInAt") ? 1 : 0);
        add("absentDays", status == "ABSENT" ? 1 : 0);
        add("leaveDays", status == "ON_LEAVE" ? 1 : 0);
        add("halfDays", status == "HALF_DAY" ? 1 : 0);
        add("lateDays", record.value("lateMinutes", 0) > 0 ? 1 : 0);
        add("totalLateMinutes", record.value("lateMinutes", 0));
        add("totalWorkingMinutes", record.value("workingMinutes", 0));
    }
    ASSERT_GE(expected.size(), 9U);
    for (auto &[month, totals] : expected) {
        totals["month"] = month;
        EXPECT_EQ(summary(month), totals);
    }
}

} // namespace clockwell::server::test
