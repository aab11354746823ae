#include "server/attendance/DeviceMonth.h"

#include "World.h"

#include <gtest/gtest.h>

#include <map>

namespace clockwell::server::test {

namespace {

std::string daysOf(const char *month, const char *today = "2026-06-10")
{
    const auto range = daysOfDeviceMonth(parseMonth(month).value(), parseDay(today).value());
    return range ? toText(range->first) + " to " + toText(range->last) : "none";
}

} // namespace

TEST(DeviceMonthTest, GregorianMonthsAreThemselves)
{
    EXPECT_EQ(daysOf("2026-06"), "2026-06-01 to 2026-06-30");
    EXPECT_EQ(daysOf("2024-02"), "2024-02-01 to 2024-02-29");
    EXPECT_EQ(daysOf("2025-12"), "2025-12-01 to 2025-12-31");
    EXPECT_EQ(daysOf("1977-01"), "1977-01-01 to 1977-01-31");
    EXPECT_EQ(daysOf("2076-01"), "2076-01-01 to 2076-01-31");
}

TEST(DeviceMonthTest, BuddhistYearsAre543Ahead)
{
    EXPECT_EQ(daysOf("2569-06"), "2026-06-01 to 2026-06-30");
    EXPECT_EQ(daysOf("2567-02"), "2024-02-01 to 2024-02-29");
    EXPECT_EQ(daysOf("2570-01"), "2027-01-01 to 2027-01-31");
}

TEST(DeviceMonthTest, PersianMonthsAreTheDaysThatTheyCover)
{
    // Six months of 31 days, five of 30, and one of 29 or, in the leap year 1403, of 30.
    EXPECT_EQ(daysOf("1404-12"), "2026-02-20 to 2026-03-20");
    EXPECT_EQ(daysOf("1405-01"), "2026-03-21 to 2026-04-20");
    EXPECT_EQ(daysOf("1405-03"), "2026-05-22 to 2026-06-21");
    EXPECT_EQ(daysOf("1405-06"), "2026-08-23 to 2026-09-22");
    EXPECT_EQ(daysOf("1405-07"), "2026-09-23 to 2026-10-22");
    EXPECT_EQ(daysOf("1405-12"), "2027-02-20 to 2027-03-20");
    EXPECT_EQ(daysOf("1403-12"), "2025-02-19 to 2025-03-20");
    EXPECT_EQ(daysOf("1403-01"), "2024-03-20 to 2024-04-19");
}

TEST(DeviceMonthTest, UmmAlQuraMonthsAreTheDaysThatTheyCover)
{
    EXPECT_EQ(daysOf("1447-12"), "2026-05-18 to 2026-06-15");
    EXPECT_EQ(daysOf("1448-01"), "2026-06-16 to 2026-07-14");
    EXPECT_EQ(daysOf("1446-09"), "2025-03-01 to 2025-03-29");
}

TEST(DeviceMonthTest, MonthsOfAYearFollowOneAnother)
{
    for (const int year : {2025, 2568, 1404, 1447}) {
        std::optional<Day> next;
        for (unsigned month = 1; month <= 12; ++month) {
            const auto range = daysOfDeviceMonth(std::chrono::year{year} / static_cast<int>(month),
                                                 parseDay("2026-06-10").value());
            ASSERT_TRUE(range) << year << '-' << month;
            EXPECT_EQ(range->first, next.value_or(range->first)) << year << '-' << month;
            EXPECT_GE((range->last - range->first).count(), 27);
            EXPECT_LE((range->last - range->first).count(), 30);
            next = range->last + std::chrono::days{1};
        }
    }
}

TEST(DeviceMonthTest, TheNearestOfTheCalendarsIsMeant)
{
    // In these numbers the Persian calendar is four decades behind that of Umm al-Qura.
    EXPECT_EQ(daysOf("1425-01"), "2046-03-21 to 2046-04-20");
    EXPECT_EQ(daysOf("1427-01"), "2006-01-31 to 2006-02-28");
    // Where the Persian calendar has come to the years that the other one is in today, it is meant by then.
    EXPECT_EQ(daysOf("1447-12", "2069-03-01"), "2069-02-19 to 2069-03-19");
}

TEST(DeviceMonthTest, YearsOfOtherCalendarsAreRefused)
{
    // The eighth year of an era of Japan, the years of Taiwan, of India's national and the Jewish calendar.
    for (const char *month : {"0008-06", "0115-06", "1948-03", "5786-10", "0001-01", "9999-12", "1500-01"})
        EXPECT_EQ(daysOf(month), "none") << month;
}

class DeviceMonthSummaryTest : public testing::Test
{
protected:
    DeviceMonthSummaryTest()
    {
        addOffice(world.database(), {.weekdays = 31}); // Monday to Friday
        addEmployee(world.database(), {.joinedOn = "2026-05-15"});
        addHoliday(world.database(), "office-1", "2026-05-22", "Spring Day");
        addHoliday(world.database(), "office-1", "2026-06-22", "Summer Day");
        addLeave(world.database(), "employee-1", "2026-05-20", "2026-05-26");
        work("2026-05-21", "09:40:00", "17:40:00"); // the last day of one Persian month: 480 minutes
        work("2026-05-31", "09:30:00", "10:30:00"); // a Sunday: closed
        work("2026-06-01", "09:50:00", "12:00:00"); // 130 minutes, 20 late
        work("2026-06-19", "09:45:00", "17:45:00"); // 480 minutes, 15 late
        work("2026-06-23", "10:00:00", "18:00:00"); // in the next Persian month
        world.setNow("2026-07-20T12:00:00Z");
    }

    void work(const std::string &day, const std::string &in, const std::string &out)
    {
        world.setNow(day + "T" + in + "Z");
        world.punch(world.token());
        world.setNow(day + "T" + out + "Z");
        world.punch(world.token());
    }
    nlohmann::json summary(const std::string &month) const
    {
        return world.get("/api/attendance/me/summary?month=" + month, world.token()).json();
    }

    World world{"2026-05-01T00:00:00Z"};
};

TEST_F(DeviceMonthSummaryTest, ThaiPhoneGetsTheMonthThatItShows)
{
    auto expected = summary("2026-06");
    EXPECT_EQ(expected.at("presentDays"), 3);
    expected["month"] = "2569-06";
    EXPECT_EQ(summary("2569-06"), expected);
    // In the digits of its script.
    EXPECT_EQ(summary("%E0%B9%92%E0%B9%95%E0%B9%96%E0%B9%99-%E0%B9%90%E0%B9%96"), expected);
}

TEST_F(DeviceMonthSummaryTest, PersianPhoneGetsExactlyTheDaysOfItsMonth)
{
    // 22 May to 21 June: 21 weekdays, of which one is a holiday, two are leave and two were worked.
    const auto expected = nlohmann::json::parse(R"({"month":"1405-03","presentDays":2,"lateDays":2,
        "totalLateMinutes":35,"absentDays":16,"leaveDays":2,"halfDays":1,"totalWorkingMinutes":610})");
    EXPECT_EQ(summary("1405-03"), expected);
    EXPECT_EQ(summary("%DB%B1%DB%B4%DB%B0%DB%B5-%DB%B0%DB%B3"), expected); // as the phone writes it
}

TEST_F(DeviceMonthSummaryTest, MonthsOfEachCalendarAddUpToTheSame)
{
    // What is missing between the months of one calendar, or counted twice, would show in the sum.
    const auto sum = [this](std::initializer_list<const char *> months) {
        std::map<std::string, long long> totals;
        for (const char *month : months) {
            const auto counted = summary(month);
            for (const auto &[key, value] : counted.items())
                totals[key] += value.is_number() ? value.get<long long>() : 0;
        }
        return totals;
    };
    const auto gregorian = sum({"2026-05", "2026-06", "2026-07"});
    EXPECT_EQ(gregorian.at("presentDays"), 4);
    EXPECT_EQ(gregorian.at("totalWorkingMinutes"), 480 + 130 + 480 + 480);
    EXPECT_EQ(sum({"2569-05", "2569-06", "2569-07"}), gregorian);
    EXPECT_EQ(sum({"1405-02", "1405-03", "1405-04"}), gregorian);
    EXPECT_EQ(sum({"1447-11", "1447-12", "1448-01", "1448-02"}), gregorian);
}

TEST_F(DeviceMonthSummaryTest, CurrentPersianMonthEndsToday)
{
    world.setNow("2026-06-22T12:00:00Z"); // the first day of 1405-04, a holiday
    EXPECT_EQ(summary("1405-04").at("absentDays"), 0);
    world.setNow("2026-06-25T12:00:00Z"); // the 23rd was worked, the 24th was not
    EXPECT_EQ(summary("1405-04").at("absentDays"), 1);
    EXPECT_EQ(summary("1405-04").at("presentDays"), 1);
}

TEST_F(DeviceMonthSummaryTest, MonthOfAnotherCalendarIsRefused)
{
    for (const char *month : {"0008-06", "5786-10", "2018-13", "1405-13", "1405-00"}) {
        const Reply reply =
            world.get(std::string{"/api/attendance/me/summary?month="} + month, world.token());
        EXPECT_EQ(reply.status, 400) << month;
        EXPECT_EQ(reply.error(), "VALIDATION_FAILED") << month;
    }
}

} // namespace clockwell::server::test
