#include "attendance/DateFormats.h"

#include <gtest/gtest.h>
#include <unicode/ucal.h>
#include <unicode/udat.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <iterator>
#include <vector>

namespace clockwell {
namespace {

using Instant = DateFormats::Instant;
using namespace std::chrono;

constexpr Instant march3 = sys_days(2025y / March / 3) + 9h + 4min; // a Monday, UTC

struct Place
{
    const char *locale;
    const char *zone;
};

constexpr std::array places{
    Place{"en_US", "America/New_York"}, Place{"en_GB", "Europe/London"},
    Place{"de_DE", "Europe/Berlin"},    Place{"ar_EG", "Africa/Cairo"},
    Place{"fa_IR", "Asia/Tehran"},      Place{"th_TH", "Asia/Bangkok"},
    Place{"hi_IN", "Asia/Kolkata"},     Place{"en_AU", "Australia/Adelaide"},
    Place{"en_NZ", "Pacific/Chatham"},
};

/// The expected result, from ICU's C API.
class Reference
{
public:
    Reference(const Place &place, const char16_t *pattern)
    {
        const std::u16string zone(place.zone, place.zone + std::char_traits<char>::length(place.zone));
        m_format =
            udat_open(UDAT_PATTERN, UDAT_PATTERN, place.locale, zone.c_str(), -1, pattern, -1, &m_status);
        EXPECT_TRUE(U_SUCCESS(m_status)) << u_errorName(m_status);
        udat_setLenient(m_format, false);
    }
    ~Reference() { udat_close(m_format); }
    QString write(UDate moment)
    {
        char16_t text[128];
        const int32_t length = udat_format(m_format, moment, text, 128, nullptr, &m_status);
        EXPECT_TRUE(U_SUCCESS(m_status));
        return QString::fromUtf16(text, length);
    }
    UDate read(const QString &text)
    {
        const std::u16string source = text.toStdU16String();
        const UDate moment = udat_parse(m_format, source.c_str(), -1, nullptr, &m_status);
        EXPECT_TRUE(U_SUCCESS(m_status)) << u_errorName(m_status);
        return moment;
    }

private:
    UErrorCode m_status = U_ZERO_ERROR;
    UDateFormat *m_format = nullptr;
};

UDate toIcu(Instant moment)
{
    return static_cast<UDate>(moment.time_since_epoch().count());
}

class EveryPlace : public ::testing::TestWithParam<Place>
{
protected:
    DateFormats formats{GetParam().locale, GetParam().zone};
};

TEST_P(EveryPlace, DayIsParsedAndFormattedByItsPatterns)
{
    const UDate day = Reference(GetParam(), u"yyyy-MM-dd").read(QStringLiteral("2025-03-03"));
    EXPECT_EQ(formats.day(QStringLiteral("2025-03-03")),
              Reference(GetParam(), u"EEE, d MMM yyyy").write(day));
}

TEST_P(EveryPlace, MonthIsParsedAndFormattedByItsPatterns)
{
    const UDate month = Reference(GetParam(), u"yyyy-MM").read(QStringLiteral("2025-03"));
    EXPECT_EQ(formats.month(QStringLiteral("2025-03")), Reference(GetParam(), u"MMMM yyyy").write(month));
}

TEST_P(EveryPlace, MomentsAreFormattedByTheirPatterns)
{
    // Around midnight and noon, and over a year with daylight saving time.
    for (const auto offset : {0h, 3h, 9h, 14h, 15h, 15h + 24h * 120, 20h + 24h * 302}) {
        const Instant moment = march3 + offset;
        EXPECT_EQ(formats.longDate(moment), Reference(GetParam(), u"EEEE, d MMM yyyy").write(toIcu(moment)));
        EXPECT_EQ(formats.monthKey(moment), Reference(GetParam(), u"yyyy-MM").write(toIcu(moment)));
        EXPECT_EQ(formats.time(moment), Reference(GetParam(), u"h:mm a").write(toIcu(moment)));
        EXPECT_EQ(QString::number(formats.hour(moment)),
                  Reference({"en_US", GetParam().zone}, u"H").write(toIcu(moment)));
    }
}

TEST_P(EveryPlace, CurrentMonthsKeyHasTheTitleOfTheCurrentMonth)
{
    // A month key in any calendar and digits is parsed as the same month.
    for (const auto offset : {0h, 24h * 27 + 14h, 24h * 120, 24h * 302}) {
        const Instant moment = march3 + offset;
        EXPECT_EQ(formats.month(formats.monthKey(moment)),
                  Reference(GetParam(), u"MMMM yyyy").write(toIcu(moment)));
    }
}

std::string placeName(const ::testing::TestParamInfo<Place> &place)
{
    const std::string name = std::string(place.param.locale) + "_" + place.param.zone;
    std::string letters;
    std::ranges::copy_if(name, std::back_inserter(letters), [](unsigned char c) { return std::isalnum(c); });
    return letters;
}

std::vector<Place> oddOffsets()
{
    std::vector<Place> odd;
    for (const char *locale : {"en_US", "en_GB", "de_DE", "ar_EG", "fa_IR", "th_TH", "hi_IN"})
        for (const char *zone : {"Asia/Kolkata", "Asia/Kathmandu", "America/St_Johns", "Pacific/Chatham"})
            odd.push_back({locale, zone});
    return odd;
}

INSTANTIATE_TEST_SUITE_P(AtHome, EveryPlace, ::testing::ValuesIn(places), placeName);
INSTANTIATE_TEST_SUITE_P(OddOffsets, EveryPlace, ::testing::ValuesIn(oddOffsets()), placeName);

class DateFormatsTest : public ::testing::Test
{
protected:
    static std::string day(const char *text)
    {
        return english().day(QString::fromLatin1(text)).toStdString();
    }
    static std::string month(const char *text)
    {
        return english().month(QString::fromLatin1(text)).toStdString();
    }
    static DateFormats english() { return {"en_US", "UTC"}; }
};

TEST_F(DateFormatsTest, EnglishExamples)
{
    EXPECT_EQ(day("2025-03-03"), "Mon, 3 Mar 2025");
    EXPECT_EQ(month("2025-03"), "March 2025");
    EXPECT_EQ(english().monthKey(march3).toStdString(), "2025-03");
    EXPECT_EQ(english().longDate(march3).toStdString(), "Monday, 3 Mar 2025");
    EXPECT_EQ(english().hour(march3), 9);
    // The space before AM comes from the locale data; newer versions have a narrow one.
    const std::string time = english().time(march3).toStdString();
    EXPECT_TRUE(time == "9:04 AM" || time == "9:04\u202fAM") << time;
}

TEST_F(DateFormatsTest, UnreadableDayIsShownAsReceived)
{
    for (const char *text : {"2025-13-01", "2025-02-30", "2025-00-10", "2025-01-00", "03/03/2025", "",
                             "today", "2025-03", "2025-03-03T00:00:00Z", "2025-03-03 ", "2025-03-"})
        EXPECT_EQ(day(text), text);
}

TEST_F(DateFormatsTest, UnreadableMonthIsShownAsReceived)
{
    for (const char *text : {"03/2025", "2025-13", "2025-00", "", "March", "2025-03-03", "2025"})
        EXPECT_EQ(month(text), text);
}

TEST_F(DateFormatsTest, ServersDatesAreInterpretedInTheLocalesCalendar)
{
    // Parsed and formatted in the same calendar, a date keeps its numbers: here the year 2025 of the Buddhist
    // calendar.
    const DateFormats thai("th_TH", "Asia/Bangkok");
    EXPECT_EQ(thai.month(QStringLiteral("2025-03")).toStdString(), "มีนาคม 2025");
    EXPECT_EQ(thai.monthKey(march3).toStdString(), "2568-03");
    EXPECT_EQ(DateFormats("fa_IR", "Asia/Tehran").monthKey(march3).toStdString(), "۱۴۰۳-۱۲");
    // The server answers with the numbers that it was asked for, in ASCII digits.
    EXPECT_EQ(thai.month(QStringLiteral("2568-03")).toStdString(), "มีนาคม 2568");
    EXPECT_EQ(DateFormats("fa_IR", "Asia/Tehran").month(QStringLiteral("1403-12")).toStdString(),
              "اسفند ۱۴۰۳");
    const DateFormats saudi("ar_SA", "Asia/Riyadh");
    EXPECT_EQ(saudi.monthKey(march3).toStdString(), "١٤٤٦-٠٩");
    EXPECT_EQ(saudi.month(QStringLiteral("1446-09")), saudi.month(saudi.monthKey(march3)));
}

TEST_F(DateFormatsTest, LeapDayIsAccepted)
{
    EXPECT_EQ(day("2024-02-29"), "Thu, 29 Feb 2024");
    EXPECT_EQ(day("2025-02-29"), "2025-02-29");
}

TEST_F(DateFormatsTest, AbsentTimeIsADash)
{
    EXPECT_EQ(english().time(std::nullopt).toStdString(), "—");
}

TEST_F(DateFormatsTest, HalfHourOffsetsAreApplied)
{
    EXPECT_EQ(DateFormats("en_GB", "Asia/Kolkata").time(march3),
              DateFormats("en_GB", "UTC").time(march3 + 5h + 30min));
    EXPECT_EQ(DateFormats("en_GB", "Asia/Kathmandu").hour(sys_days(2025y / March / 3) + 18h + 14min), 23);
    EXPECT_EQ(DateFormats("en_GB", "Asia/Kathmandu").hour(sys_days(2025y / March / 3) + 18h + 15min), 0);
}

TEST_F(DateFormatsTest, DayWithoutMidnightIsFormatted)
{
    // Clocks go forward from 24:00 to 01:00 here.
    EXPECT_EQ(DateFormats("en_US", "America/Santiago").day(QStringLiteral("2024-09-08")).toStdString(),
              DateFormats("en_US", "UTC").day(QStringLiteral("2024-09-08")).toStdString());
}

TEST_F(DateFormatsTest, DevicesLocaleFollowsTheEnvironmentAtEachCall)
{
    const QByteArray all = qgetenv("LC_ALL");
    const QByteArray lang = qgetenv("LANG");
    const DateFormats device;
    const QString text = QStringLiteral("2025-03");
    qunsetenv("LC_ALL");
    qputenv("LANG", "en_US.UTF-8");
    qputenv("LC_TIME", "de_DE.UTF-8");
    EXPECT_EQ(device.month(text).toStdString(), "März 2025");
    qunsetenv("LC_TIME");
    EXPECT_EQ(device.month(text).toStdString(), "March 2025");
    qputenv("LANG", "sr_RS.UTF-8@latin");
    EXPECT_EQ(device.month(text).toStdString(), "mart 2025");
    qputenv("LC_ALL", "C.UTF-8");
    EXPECT_EQ(device.month(text).toStdString(), "March 2025");
    qputenv("LC_ALL", all);
    qputenv("LANG", lang);
}

TEST_F(DateFormatsTest, DevicesZoneFollowsTheEnvironmentAtEachCall)
{
    const DateFormats device("en_US", {});
    qputenv("TZ", "Asia/Tokyo");
    EXPECT_EQ(device.hour(march3), 18);
    qputenv("TZ", "America/New_York");
    EXPECT_EQ(device.hour(march3), 4);
    qunsetenv("TZ");
}

/// A value of TZ and the expected times in winter and in summer.
struct DeviceZone
{
    const char *tz;
    const char *winter;
    const char *summer;
};

class DevicesZone : public ::testing::TestWithParam<DeviceZone>
{
protected:
    DevicesZone() { qputenv("TZ", GetParam().tz); }
    ~DevicesZone() override
    {
        if (m_before.isNull())
            qunsetenv("TZ");
        else
            qputenv("TZ", m_before);
    }
    const DateFormats device{"en_US", {}};

private:
    const QByteArray m_before = qgetenv("TZ");
};

TEST_P(DevicesZone, IsThatOfTheCLibraryAtEachMoment)
{
    const Instant winter = sys_days(2025y / January / 15) + 9h + 4min;
    const Instant summer = sys_days(2025y / July / 15) + 9h + 4min;
    EXPECT_EQ(device.time(winter).toStdString(), GetParam().winter);
    EXPECT_EQ(device.time(summer).toStdString(), GetParam().summer);
}

INSTANTIATE_TEST_SUITE_P(Rules, DevicesZone,
                         ::testing::Values(DeviceZone{"IST-5:30", "2:34 PM", "2:34 PM"},
                                           DeviceZone{"CET-1CEST,M3.5.0,M10.5.0/3", "10:04 AM", "11:04 AM"},
                                           DeviceZone{"<+0545>-5:45", "2:49 PM", "2:49 PM"},
                                           DeviceZone{"EST5EDT", "4:04 AM", "5:04 AM"},
                                           DeviceZone{"PST8PDT,M3.2.0,M11.1.0", "1:04 AM", "2:04 AM"}));
INSTANTIATE_TEST_SUITE_P(
    Names, DevicesZone,
    ::testing::Values(DeviceZone{":Asia/Kolkata", "2:34 PM", "2:34 PM"},
                      DeviceZone{":/usr/share/zoneinfo/Asia/Kolkata", "2:34 PM", "2:34 PM"},
                      DeviceZone{"/usr/share/zoneinfo/Europe/Berlin", "10:04 AM", "11:04 AM"},
                      DeviceZone{"Australia/Lord_Howe", "8:04 PM", "7:34 PM"}));
INSTANTIATE_TEST_SUITE_P(NoZone, DevicesZone,
                         ::testing::Values(DeviceZone{"", "9:04 AM", "9:04 AM"},
                                           DeviceZone{"Nowhere/Land", "9:04 AM", "9:04 AM"},
                                           DeviceZone{"5", "9:04 AM", "9:04 AM"}));

TEST_F(DateFormatsTest, DevicesZoneWithoutTheVariableIsTheSystems)
{
    const DateFormats device("en_US", {});
    const QByteArray before = qgetenv("TZ");
    for (const auto days : {0, 120, 240, 360}) {
        const Instant moment = march3 + 24h * days;
        qunsetenv("TZ");
        const QString own = device.time(moment);
        qputenv("TZ", ":/etc/localtime");
        EXPECT_EQ(own, device.time(moment));
    }
    qunsetenv("TZ");
    if (!before.isNull())
        qputenv("TZ", before);
}

TEST_F(DateFormatsTest, PosixRuleDeterminesTheDayAndTheMonth)
{
    const DateFormats device("en_US", {});
    const QByteArray before = qgetenv("TZ");
    qputenv("TZ", "IST-5:30");
    const Instant night = sys_days(2025y / March / 31) + 18h + 30min;
    EXPECT_EQ(device.monthKey(night - 1ms).toStdString(), "2025-03");
    EXPECT_EQ(device.hour(night - 1ms), 23);
    EXPECT_EQ(device.monthKey(night).toStdString(), "2025-04");
    EXPECT_EQ(device.longDate(night).toStdString(), "Tuesday, 1 Apr 2025");
    EXPECT_EQ(device.hour(night), 0);
    qunsetenv("TZ");
    if (!before.isNull())
        qputenv("TZ", before);
}

TEST(Duration, IsADashBelowOneMinute)
{
    EXPECT_EQ(durationText(std::nullopt).toStdString(), "—");
    EXPECT_EQ(durationText(0).toStdString(), "—");
    EXPECT_EQ(durationText(-5).toStdString(), "—");
}

TEST(Duration, IsHoursAndMinutesWithoutPadding)
{
    EXPECT_EQ(durationText(1).toStdString(), "0h 1m");
    EXPECT_EQ(durationText(59).toStdString(), "0h 59m");
    EXPECT_EQ(durationText(60).toStdString(), "1h 0m");
    EXPECT_EQ(durationText(485).toStdString(), "8h 5m");
    EXPECT_EQ(durationText(9160).toStdString(), "152h 40m");
    EXPECT_EQ(hoursAndMinutes(0).toStdString(), "0h 0m");
    EXPECT_EQ(hoursAndMinutes(-61).toStdString(), "-1h -1m");
}

} // namespace
} // namespace clockwell
