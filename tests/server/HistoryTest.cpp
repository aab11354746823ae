#include "server/attendance/History.h"

#include "World.h"

#include <gtest/gtest.h>

#include <set>

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

TEST_F(HistoryTest, MonthMayBeInDigitsOfAnotherScript)
{
    work("2026-06-01", "09:30:00", "18:00:00");
    world.setNow("2026-06-10T07:00:00Z");
    const std::string arabic = "%D9%A2%D9%A0%D9%A2%D9%A6-%D9%A0%D9%A6"; // as a phone in Egypt writes 2026-06
    EXPECT_EQ(summary(arabic), summary("2026-06"));
    EXPECT_EQ(summary(arabic).at("month"), "2026-06");
}

TEST_F(HistoryTest, FutureMonthsAndThoseBeforeJoiningAreEmpty)
{
    world.setNow("2026-06-10T07:00:00Z");
    for (const char *month : {"2026-07", "2070-12", "2026-04", "1980-01"})
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

} // namespace clockwell::server::test
