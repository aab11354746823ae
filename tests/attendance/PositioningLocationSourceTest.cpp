#include "attendance/PositioningLocationSource.h"

#include "support/Await.h"

#include <QFile>

#include <gtest/gtest.h>

namespace clockwell {
namespace {

bool isPositionPluginMapped()
{
    QFile maps(QStringLiteral("/proc/self/maps"));
    EXPECT_TRUE(maps.open(QIODevice::ReadOnly));
    return maps.readAll().contains("/position/libqtposition_");
}

// Has to be the first test: loaded plug-ins stay in the process.
TEST(PositioningLocationSource, PluginIsLoadedAtTheFirstRequest)
{
    PositioningLocationSource source;
    source.setDesiredAccuracy(LocationSource::Accuracy::Best);
    EXPECT_EQ(source.authorizationStatus(), AuthorizationStatus::AuthorizedWhenInUse);
    EXPECT_FALSE(source.isPluginLoaded());
    EXPECT_FALSE(isPositionPluginMapped());
    source.requestLocation();
    EXPECT_TRUE(isPositionPluginMapped());
}

TEST(PositioningLocationSource, MissingServiceIsUnavailableNotDenied)
{
    // With an invalid bus address there is no location service, also on machines that have one.
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    PositioningLocationSource source;
    std::optional<LocationSource::Failure> failure;
    QObject::connect(&source, &LocationSource::failed, [&](LocationSource::Failure what) { failure = what; });
    source.requestLocation();
    ASSERT_TRUE(test::spinUntil([&] { return failure.has_value(); }));
    EXPECT_EQ(failure, LocationSource::Failure::Other);
    EXPECT_EQ(source.authorizationStatus(), AuthorizationStatus::AuthorizedWhenInUse);
}

TEST(PositioningLocationSource, UnknownAccuracyIsMinusOne)
{
    QGeoPositionInfo position(QGeoCoordinate(12.5, 77.25), QDateTime::currentDateTimeUtc());
    EXPECT_EQ(toFix(position), (Fix{12.5, 77.25, -1}));
    position.setAttribute(QGeoPositionInfo::HorizontalAccuracy, 7.5);
    EXPECT_EQ(toFix(position), (Fix{12.5, 77.25, 7.5}));
}

} // namespace
} // namespace clockwell
