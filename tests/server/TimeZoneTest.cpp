#include "server/attendance/TimeZone.h"

#include "World.h"

#include <gtest/gtest.h>

namespace clockwell::server {

using test::instantOf;

namespace {

std::string dayIn(const char *zone, const char *instant)
{
    return toText(TimeZone::named(zone).value().dayOf(instantOf(instant)));
}

std::string scheduledIn(const char *zone, const char *day, int hour, int minute)
{
    return toIsoText(TimeZone::named(zone).value().at(parseDay(day).value(), hour * 60 + minute));
}

long long hoursOf(const char *zone, const char *day)
{
    const auto start = parseDay(day).value();
    const TimeZone office = TimeZone::named(zone).value();
    return std::chrono::floor<std::chrono::hours>(office.at(start + std::chrono::days{1}, 0) -
                                                  office.at(start, 0))
        .count();
}

} // namespace

TEST(TimeZoneTest, UnknownNamesAreRefused)
{
    for (const char *name : {"", "Nowhere/Town", "Europe/berlin ", "'; DROP TABLE offices; --"})
        EXPECT_FALSE(TimeZone::named(name)) << name;
}

TEST(TimeZoneTest, MachineZoneIsAlwaysUsable)
{
    EXPECT_TRUE(TimeZone::named(TimeZone::ofMachine().name()));
}

TEST(TimeZoneTest, DayChangesAtLocalMidnight)
{
    EXPECT_EQ(dayIn("Europe/Berlin", "2026-06-30T21:59:59.999Z"), "2026-06-30");
    EXPECT_EQ(dayIn("Europe/Berlin", "2026-06-30T22:00:00.000Z"), "2026-07-01");
    EXPECT_EQ(dayIn("America/New_York", "2026-07-01T03:59:59.999Z"), "2026-06-30");
    EXPECT_EQ(dayIn("America/New_York", "2026-07-01T04:00:00.000Z"), "2026-07-01");
}

TEST(TimeZoneTest, DayChangesAtLocalMidnightWithOffsetsOfPartsOfAnHour)
{
    EXPECT_EQ(dayIn("Asia/Kolkata", "2026-01-01T18:29:59.999Z"), "2026-01-01");
    EXPECT_EQ(dayIn("Asia/Kolkata", "2026-01-01T18:30:00.000Z"), "2026-01-02");
    EXPECT_EQ(dayIn("Asia/Kathmandu", "2026-01-01T18:14:59.999Z"), "2026-01-01");
    EXPECT_EQ(dayIn("Asia/Kathmandu", "2026-01-01T18:15:00.000Z"), "2026-01-02");
}

TEST(TimeZoneTest, YearChangesAtLocalMidnight)
{
    EXPECT_EQ(dayIn("Asia/Kolkata", "2026-12-31T18:30:00Z"), "2027-01-01");
    EXPECT_EQ(dayIn("America/New_York", "2027-01-01T04:59:59Z"), "2026-12-31");
}

TEST(TimeZoneTest, DayHas23HoursInSpringAnd25InAutumn)
{
    EXPECT_EQ(hoursOf("Europe/Berlin", "2026-03-29"), 23);
    EXPECT_EQ(hoursOf("Europe/Berlin", "2026-10-25"), 25);
    EXPECT_EQ(hoursOf("America/New_York", "2026-03-08"), 23);
    EXPECT_EQ(hoursOf("America/New_York", "2026-11-01"), 25);
    EXPECT_EQ(hoursOf("Asia/Kolkata", "2026-03-29"), 24);
}

TEST(TimeZoneTest, ScheduledTimesFollowTheClockChange)
{
    EXPECT_EQ(scheduledIn("Europe/Berlin", "2026-03-28", 9, 30), "2026-03-28T08:30:00.000Z");
    EXPECT_EQ(scheduledIn("Europe/Berlin", "2026-03-29", 9, 30), "2026-03-29T07:30:00.000Z");
    EXPECT_EQ(scheduledIn("Europe/Berlin", "2026-10-25", 9, 30), "2026-10-25T08:30:00.000Z");
    EXPECT_EQ(scheduledIn("Asia/Kathmandu", "2026-10-25", 9, 30), "2026-10-25T03:45:00.000Z");
}

TEST(TimeZoneTest, SkippedTimeHappensAtTheEndOfTheGap)
{
    EXPECT_EQ(scheduledIn("Europe/Berlin", "2026-03-29", 1, 59), "2026-03-29T00:59:00.000Z");
    for (const int minute : {0, 1, 30, 59})
        EXPECT_EQ(scheduledIn("Europe/Berlin", "2026-03-29", 2, minute), "2026-03-29T01:00:00.000Z")
            << minute;
    EXPECT_EQ(scheduledIn("Europe/Berlin", "2026-03-29", 3, 0), "2026-03-29T01:00:00.000Z");
    EXPECT_EQ(scheduledIn("America/New_York", "2026-03-08", 2, 30), "2026-03-08T07:00:00.000Z");
}

TEST(TimeZoneTest, TimeShownTwiceHappensTheFirstTime)
{
    EXPECT_EQ(scheduledIn("Europe/Berlin", "2026-10-25", 2, 30), "2026-10-25T00:30:00.000Z");
    EXPECT_EQ(scheduledIn("Europe/Berlin", "2026-10-25", 3, 0), "2026-10-25T02:00:00.000Z");
    EXPECT_EQ(scheduledIn("America/New_York", "2026-11-01", 1, 30), "2026-11-01T05:30:00.000Z");
}

TEST(TimeZoneTest, DayWhoseMidnightIsSkippedBeginsAfterTheGap)
{
    EXPECT_EQ(scheduledIn("Asia/Beirut", "2026-03-29", 0, 0), "2026-03-28T22:00:00.000Z");
    EXPECT_EQ(dayIn("Asia/Beirut", "2026-03-28T21:59:59.999Z"), "2026-03-28");
    EXPECT_EQ(dayIn("Asia/Beirut", "2026-03-28T22:00:00.000Z"), "2026-03-29");
}

TEST(TimeZoneTest, TimeOfDayIsWhatTheWallClockShows)
{
    const auto minutes = [](const char *zone, const char *instant) {
        return std::chrono::duration<double, std::ratio<60>>{
            TimeZone::named(zone).value().timeOfDay(instantOf(instant))}
            .count();
    };
    EXPECT_EQ(minutes("Asia/Kathmandu", "2026-01-01T00:00:30Z"), 5 * 60 + 45.5);
    EXPECT_EQ(minutes("America/New_York", "2026-01-01T04:59:00Z"), 23 * 60 + 59);
    EXPECT_EQ(minutes("America/New_York", "2026-01-01T05:00:00Z"), 0);
    EXPECT_EQ(minutes("Europe/Berlin", "2026-10-25T00:30:00Z"), 2 * 60 + 30); // shown twice
    EXPECT_EQ(minutes("Europe/Berlin", "2026-10-25T01:30:00Z"), 2 * 60 + 30);
    EXPECT_EQ(minutes("UTC", "1969-12-31T23:00:00Z"), 23 * 60); // before the epoch
}

TEST(TimeZoneTest, EndOfTheDayIsTheNextMidnight)
{
    EXPECT_EQ(scheduledIn("Europe/Berlin", "2026-12-31", 24, 0), "2026-12-31T23:00:00.000Z");
}

} // namespace clockwell::server
