#include "server/admin/FieldTexts.h"

#include <gtest/gtest.h>

namespace clockwell::server::test {

TEST(FieldTextsTest, EverySetOfWeekdaysReadsBackFromItsText)
{
    for (long long days = 1; days < 128; ++days)
        EXPECT_EQ(parseWeekdays(weekdaysText(days)), days) << weekdaysText(days);
    EXPECT_EQ(weekdaysText(0), "-");
}

TEST(FieldTextsTest, WeekdaysAreShortestAsRanges)
{
    EXPECT_EQ(weekdaysText(0b0011111), "Mon-Fri");
    EXPECT_EQ(weekdaysText(0b1111111), "Mon-Sun");
    EXPECT_EQ(weekdaysText(0b0000011), "Mon,Tue");
    EXPECT_EQ(weekdaysText(0b1010111), "Mon-Wed,Fri,Sun");
}

TEST(FieldTextsTest, RangesOfWeekdaysMayRunOverSunday)
{
    EXPECT_EQ(parseWeekdays("Sun-Thu"), 0b1001111);
    EXPECT_EQ(parseWeekdays("fri-MON"), 0b1110001);
    EXPECT_EQ(parseWeekdays("Tue-Tue"), 0b0000010);
    EXPECT_EQ(parseWeekdays(" Mon - Wed , Sat "), 0b0100111);
    EXPECT_EQ(parseWeekdays("Mon,Mon-Tue"), 0b0000011);
}

TEST(FieldTextsTest, EveryTimeOfDayReadsBackFromItsText)
{
    for (long long minute = 0; minute <= 1440; ++minute)
        EXPECT_EQ(parseTimeOfDay(timeOfDayText(minute)), minute);
    for (const char *text : {"24:01", "23:60", "-1:30", "1:030", "12:5", "12:+5", "", ":", "١٢:٠٠"})
        EXPECT_EQ(parseTimeOfDay(text), std::nullopt) << text;
}

TEST(FieldTextsTest, WholeNumbersAreDigitsOnly)
{
    EXPECT_EQ(parseWhole("0", 0, 10), 0);
    EXPECT_EQ(parseWhole("007", 0, 10), 7);
    for (const char *text :
         {"", "-0", "+1", " 1", "1 ", "1.0", "1e1", "0x1", "11", "99999999999999999999", "nan"})
        EXPECT_EQ(parseWhole(text, 0, 10), std::nullopt) << text;
}

TEST(FieldTextsTest, LinesAreCountedInCharactersAndLoseTheBlanksAroundThem)
{
    EXPECT_EQ(parseLine("  Büro  "), "Büro");
    EXPECT_EQ(parseLine("日本語", 3), "日本語");
    EXPECT_EQ(parseLine("日本語", 2), std::nullopt);
    for (const char *text : {"", " \t ", "a\nb", "a\x7f", "\x80", "a\u2028b", "a\u202Eb"})
        EXPECT_EQ(parseLine(text), std::nullopt) << text;
}

} // namespace clockwell::server::test
