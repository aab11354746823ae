#include "attendance/SimulatedLocationSource.h"

#include "attendance/LocationManager.h"
#include "attendance/NmeaLocationSource.h"
#include "attendance/PositioningLocationSource.h"
#include "support/Await.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace clockwell {
namespace {

using test::await;
using test::awaitError;
using enum AuthorizationStatus;

const char *const variable = "CLOCKWELL_SIMULATED_LOCATION";

class SimulatedLocationSourceTest : public ::testing::Test
{
protected:
    void TearDown() override { qunsetenv(variable); }
    static std::unique_ptr<LocationManager> managerFor(const QByteArray &text)
    {
        qputenv(variable, text);
        return std::make_unique<LocationManager>(makeLocationSource());
    }
    static LocationError::Kind failure(LocationManager &manager, double timeout = 15)
    {
        return awaitError<LocationError>(manager.currentFix(timeout)).kind;
    }
};

TEST_F(SimulatedLocationSourceTest, PositionIsDeliveredAfterAThirdOfASecond)
{
    const auto manager = managerFor("12.9715987,77.5945627,8.5");
    EXPECT_EQ(manager->authorization(), AuthorizedWhenInUse);
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(await(manager->currentFix(15)), (Fix{12.9715987, 77.5945627, 8.5}));
    EXPECT_GE(clock.elapsed(), 280);
    EXPECT_LT(clock.elapsed(), 10'000);
}

TEST_F(SimulatedLocationSourceTest, PositionCanBeRequestedAgain)
{
    const auto manager = managerFor("-33.5,-70.25,-1");
    await(manager->currentFix(15));
    EXPECT_EQ(await(manager->currentFix(15)), (Fix{-33.5, -70.25, -1}));
}

TEST_F(SimulatedLocationSourceTest, DeniedAndRestrictedFailAtOnce)
{
    const auto denied = managerFor("denied");
    EXPECT_EQ(denied->authorization(), Denied);
    EXPECT_EQ(failure(*denied), LocationError::Kind::Denied);
    const auto restricted = managerFor("restricted");
    EXPECT_EQ(restricted->authorization(), Restricted);
    EXPECT_EQ(failure(*restricted), LocationError::Kind::Denied);
}

TEST_F(SimulatedLocationSourceTest, SilentNeverAnswers)
{
    const auto manager = managerFor("silent");
    EXPECT_EQ(manager->authorization(), AuthorizedWhenInUse);
    EXPECT_EQ(failure(*manager, 0.5), LocationError::Kind::Timeout);
}

TEST_F(SimulatedLocationSourceTest, FailingReportsAnError)
{
    const auto manager = managerFor("failing");
    EXPECT_EQ(manager->authorization(), AuthorizedWhenInUse);
    EXPECT_EQ(failure(*manager), LocationError::Kind::Unavailable);
}

TEST_F(SimulatedLocationSourceTest, PermissionIsGrantedOneSecondAfterThePrompt)
{
    const auto manager = managerFor("ask-grant:1.5,2.5,3");
    EXPECT_EQ(manager->authorization(), NotDetermined);
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(await(manager->currentFix(15)), (Fix{1.5, 2.5, 3}));
    EXPECT_GE(clock.elapsed(), 1200);
    EXPECT_EQ(manager->authorization(), AuthorizedWhenInUse);
}

TEST_F(SimulatedLocationSourceTest, PermissionIsRefusedOneSecondAfterThePrompt)
{
    const auto manager = managerFor("ask-deny");
    EXPECT_EQ(manager->authorization(), NotDetermined);
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(failure(*manager), LocationError::Kind::Denied);
    EXPECT_GE(clock.elapsed(), 940);
    EXPECT_EQ(manager->authorization(), Denied);
}

TEST_F(SimulatedLocationSourceTest, InvalidTextIsNotParsed)
{
    for (const char *text : {"", "12.9,77.5", "12.9,77.5,8,1", "12.9;77.5;8", "91,0,5", "0,180.5,5",
                             "nan,0,5", "0,0,inf", "a,b,c", ",,", "Denied", "denied ", "ask-grant",
                             "ask-grant:", "ask-grant:1", "ask-grant:denied", "ask", "0x10,0,5"})
        EXPECT_FALSE(SimulatedLocationSource::parse(text)) << text;
}

TEST_F(SimulatedLocationSourceTest, InvalidTextIsReportedAndNeverUsesTheRealService)
{
    ::testing::internal::CaptureStderr();
    const auto manager = managerFor("12.9716 77.5946");
    const std::string message = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(message.rfind("CLOCKWELL_SIMULATED_LOCATION: expected ", 0), 0U) << message;
    EXPECT_EQ(std::count(message.begin(), message.end(), '\n'), 1);
    EXPECT_EQ(message.find("12.97"), std::string::npos) << "a position must not reach stderr";
    EXPECT_EQ(failure(*manager), LocationError::Kind::Unavailable);
}

TEST_F(SimulatedLocationSourceTest, RealServiceIsUsedWithoutTheVariable)
{
    qunsetenv(variable);
    EXPECT_NE(qobject_cast<PositioningLocationSource *>(makeLocationSource().get()), nullptr);
    qputenv(variable, "");
    EXPECT_NE(qobject_cast<PositioningLocationSource *>(makeLocationSource().get()), nullptr);
}

} // namespace
} // namespace clockwell
