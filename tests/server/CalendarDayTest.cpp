#include "server/attendance/CalendarDay.h"

#include "server/storage/Instant.h"

#include <gtest/gtest.h>

namespace clockwell::server {

TEST(CalendarDayTest, ReadsAndWritesDays)
{
    EXPECT_EQ(toText(parseDay("2026-02-28").value() + std::chrono::days{1}), "2026-03-01");
    EXPECT_EQ(toText(parseDay("2024-02-28").value() + std::chrono::days{1}), "2024-02-29");
    EXPECT_EQ(toText(parseDay("2026-12-31").value() + std::chrono::days{1}), "2027-01-01");
}

TEST(CalendarDayTest, RefusesWhatIsNoDay)
{
    for (const char *text :
         {"", "2026-2-28", "2026-02-30", "2025-02-29", "2026-13-01", "2026-00-01", "2026-01-00", "2026/01/01",
          "2026-01-01 ", "+026-01-01", "0000-01-01", "26-01-01"})
        EXPECT_FALSE(parseDay(text)) << text;
}

TEST(CalendarDayTest, RefusesWhatIsNoMonth)
{
    for (const char *text :
         {"", "2026", "2026-13", "2026-00", "2026-1", "03/2026", "2026-01-01", "0000-01", "2026-1a"})
        EXPECT_FALSE(parseMonth(text)) << text;
}

TEST(CalendarDayTest, KnowsTheEndsOfMonths)
{
    EXPECT_EQ(toText(lastDayOf(parseMonth("2024-02").value())), "2024-02-29");
    EXPECT_EQ(toText(lastDayOf(parseMonth("2026-12").value())), "2026-12-31");
    EXPECT_EQ(toText(firstDayOf(parseMonth("2026-12").value())), "2026-12-01");
    EXPECT_EQ(toText(monthOf(parseDay("2027-01-01").value())), "2027-01");
}

TEST(CalendarDayTest, CountsWeekdaysFromMonday)
{
    EXPECT_EQ(weekdayIndex(parseDay("2026-06-08").value()), 0U);
    EXPECT_EQ(weekdayIndex(parseDay("2026-06-14").value()), 6U);
}

TEST(InstantTest, IsWrittenWithMillisecondsAndZ)
{
    EXPECT_EQ(toIsoText(fromMillis(0)), "1970-01-01T00:00:00.000Z");
    EXPECT_EQ(toIsoText(fromMillis(1'767'225'599'007)), "2025-12-31T23:59:59.007Z");
    EXPECT_EQ(toIsoText(fromMillis(-1)), "1969-12-31T23:59:59.999Z");
}

} // namespace clockwell::server
