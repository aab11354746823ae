#include "attendance/HomeTexts.h"

#include <gtest/gtest.h>

namespace clockwell {
namespace {

std::string greet(int hour, const char *name)
{
    return home_texts::greeting(hour, QString::fromUtf8(name)).toStdString();
}

TEST(Greeting, DependsOnTheHour)
{
    EXPECT_EQ(greet(0, ""), "Good morning");
    EXPECT_EQ(greet(11, ""), "Good morning");
    EXPECT_EQ(greet(12, ""), "Good afternoon");
    EXPECT_EQ(greet(16, ""), "Good afternoon");
    EXPECT_EQ(greet(17, ""), "Good evening");
    EXPECT_EQ(greet(23, ""), "Good evening");
}

TEST(Greeting, ContainsTheFirstWordOfTheName)
{
    EXPECT_EQ(greet(9, "Ada Lovelace"), "Good morning, Ada");
    EXPECT_EQ(greet(9, "  Ada   Lovelace "), "Good morning, Ada");
    EXPECT_EQ(greet(9, "Ada"), "Good morning, Ada");
    EXPECT_EQ(greet(9, "José-María Núñez"), "Good morning, José-María");
    EXPECT_EQ(greet(9, "Ada\tLovelace"), "Good morning, Ada\tLovelace"); // only the space separates
}

TEST(Greeting, HasNoNameWithoutOne)
{
    EXPECT_EQ(greet(9, ""), "Good morning");
    EXPECT_EQ(greet(9, "   "), "Good morning");
}

TEST(OfficeLines, AreADashAndEmptyBeforeTheFirstResponse)
{
    EXPECT_EQ(home_texts::officeName(nullptr).toStdString(), "—");
    EXPECT_EQ(home_texts::hoursLine(nullptr).toStdString(), "");
}

TEST(OfficeLines, ShowTheTimesAsReceived)
{
    TodayResponse today;
    today.office = {QStringLiteral("Head Office"), QStringLiteral("09:30"), QStringLiteral("18:00"), 150};
    EXPECT_EQ(home_texts::officeName(&today).toStdString(), "Head Office");
    EXPECT_EQ(home_texts::hoursLine(&today).toStdString(), "Hours 09:30–18:00 · within 150m");
    today.office.checkInTime = QStringLiteral("9.30 am %1");
    EXPECT_EQ(home_texts::hoursLine(&today).toStdString(), "Hours 9.30 am %1–18:00 · within 150m");
}

TEST(Distance, IsTruncatedToWholeMetres)
{
    EXPECT_EQ(home_texts::distance(12.9).toStdString(), "12m");
    EXPECT_EQ(home_texts::distance(37).toStdString(), "37m");
    EXPECT_EQ(home_texts::distance(0.99).toStdString(), "0m");
    EXPECT_EQ(home_texts::distance(-0.5).toStdString(), "0m");
    EXPECT_EQ(home_texts::distance(-1.5).toStdString(), "-1m");
    EXPECT_EQ(home_texts::distance(12345678.9).toStdString(), "12345678m");
    EXPECT_EQ(home_texts::distance(1e20).toStdString(), "100000000000000000000m");
}

TEST(NearestLine, ShowsOfficeAndRadius)
{
    DistanceResponse live;
    live.radiusMeters = 150;
    EXPECT_EQ(home_texts::nearestLine(live).toStdString(), "Nearest: — · radius 150m");
    live.office = QStringLiteral("Head Office");
    EXPECT_EQ(home_texts::nearestLine(live).toStdString(), "Nearest: Head Office · radius 150m");
}

TEST(PunchOffer, DependsOnTheServer)
{
    EXPECT_EQ(home_texts::punchOffer(nullptr), home_texts::PunchOffer::CheckIn);
    TodayResponse today;
    EXPECT_EQ(home_texts::punchOffer(&today), home_texts::PunchOffer::Complete);
    today.canCheckIn = true;
    EXPECT_EQ(home_texts::punchOffer(&today), home_texts::PunchOffer::CheckIn);
    today.canCheckOut = true;
    EXPECT_EQ(home_texts::punchOffer(&today), home_texts::PunchOffer::CheckOut);
    today.canCheckIn = false;
    EXPECT_EQ(home_texts::punchOffer(&today), home_texts::PunchOffer::CheckOut);
}

} // namespace
} // namespace clockwell
