#include "net/DateRule.h"

#include <gtest/gtest.h>

namespace clockwell {

namespace {

std::optional<qint64> millis(std::string_view text)
{
    const std::optional<Instant> moment = parseInstant(text);
    return moment ? std::optional<qint64>(moment->time_since_epoch().count()) : std::nullopt;
}

constexpr qint64 may1 = 1'714'554'930'000; // 2024-05-01T09:15:30Z

} // namespace

TEST(DateRule, ReadsAMomentWithFraction)
{
    EXPECT_EQ(millis("2024-05-01T09:15:30.123Z"), may1 + 123);
}

TEST(DateRule, ReadsAMomentWithoutFraction)
{
    EXPECT_EQ(millis("2024-05-01T09:15:30Z"), may1);
}

TEST(DateRule, SubtractsTheOffset)
{
    EXPECT_EQ(millis("2024-05-01T09:15:30+05:30"), may1 - 330 * 60'000);
    EXPECT_EQ(millis("2024-05-01T09:15:30.123+05:30"), may1 + 123 - 330 * 60'000);
    EXPECT_EQ(millis("2024-05-01T09:15:30-08:00"), may1 + 480 * 60'000);
    EXPECT_EQ(millis("2024-05-01T09:15:30-00:00"), may1);
}

TEST(DateRule, TruncatesToMilliseconds)
{
    EXPECT_EQ(millis("2024-05-01T09:15:30.1Z"), may1 + 100);
    EXPECT_EQ(millis("2024-05-01T09:15:30.12Z"), may1 + 120);
    EXPECT_EQ(millis("2024-05-01T09:15:30.1239Z"), may1 + 123);
    EXPECT_EQ(millis("2024-05-01T09:15:30.999999999Z"), may1 + 999);
}

TEST(DateRule, FractionHasOneToNineDigits)
{
    EXPECT_FALSE(millis("2024-05-01T09:15:30.Z"));
    EXPECT_FALSE(millis("2024-05-01T09:15:30.1234567890Z"));
    EXPECT_FALSE(millis("2024-05-01T09:15:30,123Z"));
}

TEST(DateRule, AcceptsFebruary29InLeapYearsOnly)
{
    EXPECT_TRUE(millis("2024-02-29T00:00:00Z"));
    EXPECT_TRUE(millis("2000-02-29T00:00:00Z"));
    EXPECT_FALSE(millis("2023-02-29T00:00:00Z"));
    EXPECT_FALSE(millis("1900-02-29T00:00:00Z"));
    EXPECT_FALSE(millis("2024-02-30T00:00:00Z"));
}

TEST(DateRule, RefusesFieldsOutOfRange)
{
    for (const char *text :
         {"2024-00-01T09:15:30Z", "2024-13-01T09:15:30Z", "2024-05-00T09:15:30Z", "2024-05-32T09:15:30Z",
          "2024-04-31T09:15:30Z", "2024-05-01T24:00:00Z", "2024-05-01T25:15:30Z", "2024-05-01T09:60:30Z",
          "2024-05-01T09:15:60Z", "2024-05-01T09:15:61Z", "2024-05-01T09:15:30+24:00",
          "2024-05-01T09:15:30+05:60"})
        EXPECT_FALSE(millis(text)) << text;
}

TEST(DateRule, RefusesOtherForms)
{
    for (const char *text : {"",
                             "2024-05-01 09:15:30",
                             "2024-05-01 09:15:30Z",
                             "2024-05-01",
                             "09:15:30",
                             "2024-05-01T09:15:30",
                             "2024-05-01T09:15Z",
                             "2024-05-01t09:15:30Z",
                             "2024-05-01T09:15:30z",
                             "20240501T091530Z",
                             "2024-05-01T09:15:30+0530",
                             "2024-05-01T09:15:30+05",
                             "2024-05-01T09:15:30Z ",
                             " 2024-05-01T09:15:30Z",
                             "2024-5-1T9:15:30Z",
                             "+2024-05-01T09:15:30Z",
                             "-024-05-01T09:15:30Z",
                             "12024-05-01T09:15:30Z",
                             "2024-05-01T09:15:30ZZ",
                             "2024/05/01T09:15:30Z",
                             "2024-05-01T09:15:30.+1Z",
                             "2024-05-01T-9:15:30Z"})
        EXPECT_FALSE(millis(text)) << text;
}

TEST(DateRule, RefusesEveryTruncation)
{
    const std::string_view whole = "2024-05-01T09:15:30.123+05:30";
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(millis(whole.substr(0, length))) << length;
}

TEST(DateRule, ReadsTheEndsOfTheCalendar)
{
    EXPECT_EQ(millis("1970-01-01T00:00:00Z"), 0);
    EXPECT_EQ(millis("1969-12-31T23:59:59.999Z"), -1);
    EXPECT_EQ(millis("9999-12-31T23:59:59.999Z"), 253'402'300'799'999);
    EXPECT_EQ(millis("0001-01-01T00:00:00Z"), -62'135'596'800'000);
}

TEST(DateRule, RefusesNulCharacters)
{
    EXPECT_FALSE(millis(std::string_view("2024-05-01T09:15:30Z\0", 21)));
    EXPECT_FALSE(millis(std::string_view("2024-05-01T09:15:30\0", 20)));
}

} // namespace clockwell
