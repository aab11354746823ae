#include "attendance/PunchTexts.h"
#include "attendance/LocationSource.h"
#include "attendance/PunchBody.h"
#include "net/Encoding.h"

#include <gtest/gtest.h>

namespace clockwell {
namespace {

std::string text(const PunchResponse &punch)
{
    return punchText(punch).toStdString();
}

PunchResponse in()
{
    PunchResponse punch;
    punch.type = QStringLiteral("IN");
    return punch;
}

TEST(PunchText, CheckInNamesOfficeStatusAndLateness)
{
    PunchResponse punch = in();
    punch.office = QStringLiteral("Head Office");
    punch.status = QStringLiteral("LATE");
    punch.lateMinutes = 12;
    EXPECT_EQ(text(punch), "Checked in at Head Office · LATE · 12m late");
    punch.status = QStringLiteral("ON_TIME"); // as the server wrote it
    punch.lateMinutes = 0;
    EXPECT_EQ(text(punch), "Checked in at Head Office · ON_TIME");
    punch.lateMinutes = -3;
    EXPECT_EQ(text(punch), "Checked in at Head Office · ON_TIME");
}

TEST(PunchText, CheckInWithNothingKnownEndsInASpace)
{
    PunchResponse punch = in();
    punch.lateMinutes = 0;
    EXPECT_EQ(text(punch), "Checked in at office · ");
    punch.lateMinutes = 1;
    EXPECT_EQ(text(punch), "Checked in at office ·  · 1m late");
}

TEST(PunchText, AnyOtherTypeIsACheckOut)
{
    for (const char *type : {"OUT", "in", "", "BREAK"}) {
        PunchResponse punch;
        punch.type = QString::fromLatin1(type);
        EXPECT_EQ(text(punch), "Checked out · worked 0h 0m") << type;
        punch.workingMinutes = 485;
        EXPECT_EQ(text(punch), "Checked out · worked 8h 5m") << type;
    }
}

TEST(PunchText, PercentSignsOfTheServerAreLeftAlone)
{
    PunchResponse punch = in();
    punch.office = QStringLiteral("%1 %2");
    punch.status = QStringLiteral("%1");
    EXPECT_EQ(text(punch), "Checked in at %1 %2 · %1");
}

TEST(PunchBody, HasItsKeysInOrder)
{
    EXPECT_EQ(
        encodeBody(punchBody(Fix{12.9715987, 77.5945627, 8.5}, QStringLiteral("D-1"))),
        R"({"lat":12.9715987,"lng":77.5945627,"accuracy":8.5,"deviceId":"D-1","isMockLocation":false})");
}

TEST(PunchBody, InvalidAccuracyIsSentAsZero)
{
    EXPECT_EQ(punchBody(Fix{1, 2, -1}, {}).accuracy, 0);
    EXPECT_EQ(punchBody(Fix{1, 2, 0}, {}).accuracy, 0);
    EXPECT_EQ(punchBody(Fix{1, 2, 0.5}, {}).accuracy, 0.5);
}

} // namespace
} // namespace clockwell
