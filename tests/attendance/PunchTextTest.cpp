#include "attendance/PunchText.h"

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

TEST(PunchText, CheckInShowsOfficeStatusAndLateness)
{
    PunchResponse punch = in();
    punch.office = QStringLiteral("Head Office");
    punch.status = QStringLiteral("LATE");
    punch.lateMinutes = 12;
    EXPECT_EQ(text(punch), "Checked in at Head Office · LATE · 12m late");
    punch.status = QStringLiteral("ON_TIME"); // exactly as received
    punch.lateMinutes = 0;
    EXPECT_EQ(text(punch), "Checked in at Head Office · ON_TIME");
    punch.lateMinutes = -3;
    EXPECT_EQ(text(punch), "Checked in at Head Office · ON_TIME");
}

TEST(PunchText, CheckInWithoutDetailsEndsInASpace)
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

TEST(PunchText, PercentSignsOfTheServerAreNotPlaceholders)
{
    PunchResponse punch = in();
    punch.office = QStringLiteral("%1 %2");
    punch.status = QStringLiteral("%1");
    EXPECT_EQ(text(punch), "Checked in at %1 %2 · %1");
}

} // namespace
} // namespace clockwell
