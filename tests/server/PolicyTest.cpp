#include "server/attendance/Policy.h"

#include "World.h"

#include <gtest/gtest.h>

namespace clockwell::server {

using test::instantOf;

namespace {

/// A day from 09:30 to 18:00 with 10 minutes of grace and 300 minutes for a full day.
WorkedDay dayFrom(const std::string &checkIn, const std::string &checkOut = {})
{
    const auto at = [](const std::string &time) { return instantOf("2026-06-10T" + time + "Z"); };
    return {at("09:30:00"),
            at("18:00:00"),
            10,
            300,
            at(checkIn),
            checkOut.empty() ? std::nullopt : std::optional{at(checkOut)}};
}

const Day today = parseDay("2026-06-10").value();
const DayFacts openDay{true, false, true, false};

} // namespace

TEST(PolicyTest, EarlyAndPunctualCheckInIsOnTime)
{
    for (const char *time : {"07:00:00", "09:29:59", "09:30:00"}) {
        const Assessment day = assess(dayFrom(time), false);
        EXPECT_EQ(day.status, "ON_TIME") << time;
        EXPECT_EQ(day.lateMinutes, 0) << time;
    }
}

TEST(PolicyTest, GraceEndsAfterItsLastMinute)
{
    EXPECT_EQ(assess(dayFrom("09:40:59"), false).status, "ON_TIME");
    EXPECT_EQ(assess(dayFrom("09:40:59"), false).lateMinutes, 0);
    EXPECT_EQ(assess(dayFrom("09:41:00"), false).status, "LATE");
}

TEST(PolicyTest, LatenessCountsFromTheScheduleNotFromTheGrace)
{
    EXPECT_EQ(assess(dayFrom("09:41:00"), false).lateMinutes, 11);
    EXPECT_EQ(assess(dayFrom("23:59:59"), false).lateMinutes, 869);
}

TEST(PolicyTest, OpenDayHasNoWorkingAndNoEarlyMinutes)
{
    const Assessment day = assess(dayFrom("09:30:00"), false);
    EXPECT_FALSE(day.workingMinutes);
    EXPECT_FALSE(day.earlyLeaveMinutes);
}

TEST(PolicyTest, WorkingMinutesAreWholeMinutesElapsed)
{
    EXPECT_EQ(assess(dayFrom("09:30:30", "17:30:29"), false).workingMinutes, 479);
    EXPECT_EQ(assess(dayFrom("09:30:30", "17:30:30"), false).workingMinutes, 480);
}

TEST(PolicyTest, EarlyLeaveCountsToTheScheduledEnd)
{
    EXPECT_EQ(assess(dayFrom("09:30:00", "17:15:00"), false).earlyLeaveMinutes, 45);
    EXPECT_EQ(assess(dayFrom("09:30:00", "17:59:30"), false).earlyLeaveMinutes, 0);
    EXPECT_EQ(assess(dayFrom("09:30:00", "19:00:00"), false).earlyLeaveMinutes, 0);
}

TEST(PolicyTest, LessThanAFullDayIsAHalfDay)
{
    EXPECT_EQ(assess(dayFrom("09:30:00", "14:29:59"), false).status, "HALF_DAY");
    EXPECT_EQ(assess(dayFrom("09:30:00", "14:30:00"), false).status, "ON_TIME");
}

TEST(PolicyTest, HalfDayKeepsItsLateMinutes)
{
    const Assessment day = assess(dayFrom("12:00:00", "14:00:00"), true);
    EXPECT_EQ(day.status, "HALF_DAY");
    EXPECT_EQ(day.lateMinutes, 150);
}

TEST(PolicyTest, LateDayStaysLateAfterCheckOut)
{
    EXPECT_EQ(assess(dayFrom("10:00:00", "18:00:00"), true).status, "LATE");
}

TEST(PolicyTest, MissingCheckOutShowsFromTheNextDayOn)
{
    EXPECT_EQ(assess(dayFrom("09:30:00"), false).status, "ON_TIME");
    EXPECT_EQ(assess(dayFrom("09:30:00"), true).status, "MISSING_CHECK_OUT");
    EXPECT_EQ(assess(dayFrom("10:30:00"), true).status, "MISSING_CHECK_OUT");
    EXPECT_EQ(assess(dayFrom("10:30:00"), true).lateMinutes, 60);
}

TEST(PolicyTest, ClockSetBackNeverGivesNegativeMinutes)
{
    const Assessment day = assess(dayFrom("12:00:00", "11:00:00"), false);
    EXPECT_EQ(day.workingMinutes, 0);
    EXPECT_EQ(day.status, "HALF_DAY");
}

TEST(PolicyTest, MinutesAreElapsedTimeAcrossAClockChange)
{
    // Berlin, 2026-10-25: from the first 02:00 to 03:00 two hours go by.
    const WorkedDay day{instantOf("2026-10-25T00:00:00Z"), instantOf("2026-10-25T02:00:00Z"), 0, 0,
                        instantOf("2026-10-25T00:00:00Z"), instantOf("2026-10-25T02:00:00Z")};
    EXPECT_EQ(assess(day, true).workingMinutes, 120);
}

TEST(PolicyTest, DayWithoutPunchesIsAbsentOnlyOnceItIsOver)
{
    EXPECT_EQ(assessWithoutPunches(openDay, today - std::chrono::days{1}, today)->status, "ABSENT");
    EXPECT_FALSE(assessWithoutPunches(openDay, today, today));
    EXPECT_FALSE(assessWithoutPunches(openDay, today + std::chrono::days{1}, today));
}

TEST(PolicyTest, LeaveCountsOnWorkingDaysUpToToday)
{
    const DayFacts leave{true, false, true, true};
    EXPECT_EQ(assessWithoutPunches(leave, today - std::chrono::days{1}, today)->status, "ON_LEAVE");
    EXPECT_EQ(assessWithoutPunches(leave, today, today)->status, "ON_LEAVE");
    EXPECT_FALSE(assessWithoutPunches(leave, today + std::chrono::days{1}, today));
}

TEST(PolicyTest, ClosedDaysDoNotCount)
{
    const Day yesterday = today - std::chrono::days{1};
    EXPECT_FALSE(
        assessWithoutPunches({false, false, true, true}, yesterday, today));        // weekend, also on leave
    EXPECT_FALSE(assessWithoutPunches({true, true, true, true}, yesterday, today)); // holiday, also on leave
    EXPECT_FALSE(assessWithoutPunches({true, false, false, false}, yesterday, today));     // not yet joined
    EXPECT_FALSE(assessWithoutPunches({true, false, true, true, true}, yesterday, today)); // has left
}

TEST(PolicyTest, PunchesTakeTurns)
{
    const WorkedDay checkedIn = dayFrom("09:30:00");
    const WorkedDay complete = dayFrom("09:30:00", "18:00:00");
    EXPECT_EQ(nextPunch(true, nullptr), NextPunch::CheckIn);
    EXPECT_EQ(nextPunch(true, &checkedIn), NextPunch::CheckOut);
    EXPECT_EQ(nextPunch(true, &complete), NextPunch::Complete);
}

TEST(PolicyTest, ClosedDayRefusesTheCheckInButNotTheCheckOut)
{
    const WorkedDay checkedIn = dayFrom("09:30:00");
    EXPECT_EQ(nextPunch(false, nullptr), NextPunch::Closed);
    EXPECT_EQ(nextPunch(false, &checkedIn), NextPunch::CheckOut);
}

TEST(PolicyTest, TotalsAddUpTheDays)
{
    const MonthTotals totals = addUp({{"ON_TIME", 0, 480, 0},
                                      {"LATE", 20, 450, 0},
                                      {"HALF_DAY", 15, 120, 300},
                                      {"MISSING_CHECK_OUT", 0, std::nullopt, std::nullopt},
                                      {"ABSENT", {}, {}, {}},
                                      {"ON_LEAVE", {}, {}, {}}});
    EXPECT_EQ(totals.presentDays, 4);
    EXPECT_EQ(totals.lateDays, 2);
    EXPECT_EQ(totals.totalLateMinutes, 35);
    EXPECT_EQ(totals.absentDays, 1);
    EXPECT_EQ(totals.leaveDays, 1);
    EXPECT_EQ(totals.halfDays, 1);
    EXPECT_EQ(totals.totalWorkingMinutes, 1050);
}

} // namespace clockwell::server
