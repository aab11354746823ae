#include "attendance/LocationManager.h"

#include "ScriptedLocationSource.h"
#include "net/Liveness.h"
#include "support/Await.h"

#include <gtest/gtest.h>

#include <limits>

using namespace std::chrono_literals;

namespace clockwell {
namespace {

using test::observe;
using test::Outcome;
using test::ScriptedLocationSource;
using test::spinUntil;
using enum AuthorizationStatus;

const Fix office{12.9715987, 77.5945627, 8};
const Fix street{12.98, 77.6, 30};

template <class T>
bool wasAbandoned(const std::shared_ptr<Outcome<T>> &outcome)
{
    try {
        if (outcome->error)
            std::rethrow_exception(outcome->error);
    } catch (const Abandoned &) {
        return true;
    } catch (...) {
    }
    return false;
}

std::optional<LocationError::Kind> errorOf(const std::shared_ptr<Outcome<Fix>> &outcome)
{
    try {
        if (outcome->error)
            std::rethrow_exception(outcome->error);
    } catch (const LocationError &error) {
        return error.kind;
    } catch (...) {
    }
    return {};
}

class LocationManagerTest : public ::testing::Test
{
protected:
    void make(AuthorizationStatus status = AuthorizedWhenInUse)
    {
        auto made = std::make_unique<ScriptedLocationSource>(status);
        source = made.get();
        manager = std::make_unique<LocationManager>(std::move(made));
        QObject::connect(manager.get(), &LocationManager::authorizationChanged, [this] { ++changes; });
    }
    static void settle()
    {
        for (int i = 0; i < 5; ++i)
            QCoreApplication::processEvents();
    }

    ScriptedLocationSource *source = nullptr; // the manager's
    std::unique_ptr<LocationManager> manager;
    int changes = 0;
};

TEST_F(LocationManagerTest, ReadsThePermissionAndRequestsTheBestAccuracyAtTheStart)
{
    make(Restricted);
    EXPECT_EQ(manager->authorization(), Restricted);
    EXPECT_EQ(source->accuracies, QList{LocationSource::Accuracy::Best});
    EXPECT_FALSE(manager->lastFix());
    EXPECT_EQ(source->permissionRequests + source->locationRequests, 0);
}

TEST_F(LocationManagerTest, StatusValuesAreThoseOfThePlatforms)
{
    EXPECT_EQ(static_cast<int>(NotDetermined), 0);
    EXPECT_EQ(static_cast<int>(Restricted), 1);
    EXPECT_EQ(static_cast<int>(Denied), 2);
    EXPECT_EQ(static_cast<int>(AuthorizedAlways), 3);
    EXPECT_EQ(static_cast<int>(AuthorizedWhenInUse), 4);
}

TEST_F(LocationManagerTest, ErrorsHaveTheirMessages)
{
    using Kind = LocationError::Kind;
    const auto text = [](Kind kind) { return errorText(LocationError(kind)).toStdString(); };
    EXPECT_EQ(text(Kind::Denied), "Location permission is off. Enable it in Settings to mark attendance.");
    EXPECT_EQ(text(Kind::Timeout), "Couldn't get a GPS fix. Move to open sky and try again.");
    EXPECT_EQ(text(Kind::Unavailable), "Location is unavailable right now.");
}

TEST_F(LocationManagerTest, DecidedPermissionIsReturnedWithoutAsking)
{
    for (const auto status : {Restricted, Denied, AuthorizedAlways, AuthorizedWhenInUse}) {
        make(status);
        const auto outcome = observe<AuthorizationStatus>(manager->requestPermission());
        ASSERT_TRUE(outcome->done);
        EXPECT_EQ(*outcome->value, status);
        EXPECT_EQ(source->permissionRequests, 0);
    }
}

TEST_F(LocationManagerTest, PermissionRequestWaitsForADecision)
{
    make(NotDetermined);
    const auto outcome = observe<AuthorizationStatus>(manager->requestPermission());
    EXPECT_EQ(source->permissionRequests, 1);
    source->answer(NotDetermined);
    settle();
    EXPECT_FALSE(outcome->done);
    EXPECT_EQ(changes, 0);
    source->answer(AuthorizedAlways);
    EXPECT_FALSE(outcome->done); // the callback itself only schedules
    EXPECT_EQ(manager->authorization(), NotDetermined);
    settle();
    ASSERT_TRUE(outcome->done);
    EXPECT_EQ(*outcome->value, AuthorizedAlways);
    EXPECT_EQ(manager->authorization(), AuthorizedAlways);
    EXPECT_EQ(changes, 1);
}

TEST_F(LocationManagerTest, RestrictedFailsLikeDenied)
{
    for (const auto status : {Restricted, Denied}) {
        make(status);
        const auto outcome = observe<Fix>(manager->currentFix(15));
        EXPECT_EQ(errorOf(outcome), LocationError::Kind::Denied);
        EXPECT_EQ(source->locationRequests, 0);
    }
}

TEST_F(LocationManagerTest, FirstFixRequestsPermissionAndThenThePosition)
{
    make(NotDetermined);
    const auto outcome = observe<Fix>(manager->currentFix(15));
    EXPECT_EQ(source->locationRequests, 0);
    source->answer(AuthorizedWhenInUse);
    settle();
    EXPECT_EQ(source->locationRequests, 1);
    source->deliver({office});
    settle();
    ASSERT_TRUE(outcome->value);
    EXPECT_EQ(*outcome->value, office);
}

TEST_F(LocationManagerTest, RefusedPermissionFailsTheFix)
{
    make(NotDetermined);
    const auto outcome = observe<Fix>(manager->currentFix(15));
    source->answer(Denied);
    settle();
    EXPECT_EQ(errorOf(outcome), LocationError::Kind::Denied);
    EXPECT_EQ(source->locationRequests, 0);
}

TEST_F(LocationManagerTest, LastOfSeveralPositionsIsUsed)
{
    make();
    const auto outcome = observe<Fix>(manager->currentFix(15));
    source->deliver({street, office});
    EXPECT_FALSE(outcome->done); // the callback itself only schedules
    settle();
    ASSERT_TRUE(outcome->value);
    EXPECT_EQ(*outcome->value, office);
    EXPECT_EQ(manager->lastFix(), office);
}

TEST_F(LocationManagerTest, EmptyListOfPositionsChangesNothing)
{
    make();
    const auto outcome = observe<Fix>(manager->currentFix(15));
    source->deliver({});
    settle();
    EXPECT_FALSE(outcome->done);
    EXPECT_FALSE(manager->lastFix());
}

TEST_F(LocationManagerTest, AnyAccuracyIsAccepted)
{
    make();
    const auto outcome = observe<Fix>(manager->currentFix(15));
    source->deliver({Fix{1, 2, -1}});
    settle();
    ASSERT_TRUE(outcome->value);
    EXPECT_EQ(outcome->value->horizontalAccuracy, -1);
}

TEST_F(LocationManagerTest, LaterPositionOnlyReplacesTheLastFix)
{
    make();
    const auto outcome = observe<Fix>(manager->currentFix(15));
    source->deliver({street});
    settle();
    source->deliver({office});
    settle();
    EXPECT_EQ(*outcome->value, street);
    EXPECT_EQ(manager->lastFix(), office);
}

TEST_F(LocationManagerTest, PositionDeliveredDuringTheRequestIsUsed)
{
    make();
    source->immediate = office;
    const auto outcome = observe<Fix>(manager->currentFix(15));
    EXPECT_FALSE(outcome->done);
    settle();
    ASSERT_TRUE(outcome->value);
    EXPECT_EQ(*outcome->value, office);
}

TEST_F(LocationManagerTest, MissingPositionIsATimeout)
{
    make();
    const auto outcome = observe<Fix>(manager->currentFix(0.05));
    ASSERT_TRUE(spinUntil([&] { return outcome->done; }));
    EXPECT_EQ(errorOf(outcome), LocationError::Kind::Timeout);
    source->deliver({office});
    settle();
    EXPECT_EQ(manager->lastFix(), office);
}

TEST_F(LocationManagerTest, TimeLimitStartsAfterThePermission)
{
    make(NotDetermined);
    const auto outcome = observe<Fix>(manager->currentFix(0.05));
    EXPECT_FALSE(spinUntil([&] { return outcome->done; }, 150ms));
    source->answer(AuthorizedWhenInUse);
    ASSERT_TRUE(spinUntil([&] { return outcome->done; }));
    EXPECT_EQ(errorOf(outcome), LocationError::Kind::Timeout);
}

TEST_F(LocationManagerTest, PositionStopsTheTimer)
{
    make();
    const auto first = observe<Fix>(manager->currentFix(1));
    source->deliver({office});
    settle();
    ASSERT_TRUE(first->value);
    const auto second = observe<Fix>(manager->currentFix(15));
    EXPECT_FALSE(spinUntil([&] { return second->done; }, 1500ms)); // the first timer would have ended it
}

TEST_F(LocationManagerTest, WithdrawnPermissionFailsThePendingFix)
{
    make();
    const auto outcome = observe<Fix>(manager->currentFix(15));
    source->fail(LocationSource::Failure::Denied);
    settle();
    EXPECT_EQ(errorOf(outcome), LocationError::Kind::Denied);
}

TEST_F(LocationManagerTest, OtherFailureIsUnavailable)
{
    make();
    const auto outcome = observe<Fix>(manager->currentFix(15));
    source->fail(LocationSource::Failure::Other);
    settle();
    EXPECT_EQ(errorOf(outcome), LocationError::Kind::Unavailable);
}

TEST_F(LocationManagerTest, FailureWithoutARequestDoesNothing)
{
    make();
    source->fail(LocationSource::Failure::Denied);
    source->fail(LocationSource::Failure::Other);
    settle();
    const auto outcome = observe<Fix>(manager->currentFix(15));
    settle();
    EXPECT_FALSE(outcome->done);
    EXPECT_EQ(manager->authorization(), AuthorizedWhenInUse);
}

TEST_F(LocationManagerTest, SecondRequestReplacesTheFirstWhichNeverContinues)
{
    make();
    const auto first = observe<Fix>(manager->currentFix(15));
    const auto second = observe<Fix>(manager->currentFix(15));
    EXPECT_FALSE(first->done); // does not run inside the second call
    source->deliver({office});
    settle();
    EXPECT_TRUE(wasAbandoned(first));
    ASSERT_TRUE(second->value);
    EXPECT_EQ(*second->value, office);
}

TEST_F(LocationManagerTest, TimerOfAReplacedRequestKeepsRunningAndEndsTheNextRequest)
{
    make();
    const auto first = observe<Fix>(manager->currentFix(0.05));
    const auto second = observe<Fix>(manager->currentFix(15));
    ASSERT_TRUE(spinUntil([&] { return second->done; }));
    EXPECT_EQ(errorOf(second), LocationError::Kind::Timeout);
    EXPECT_TRUE(wasAbandoned(first));
}

TEST_F(LocationManagerTest, WaitersOfADestroyedManagerAreUnwound)
{
    make();
    const auto replaced = observe<Fix>(manager->currentFix(15));
    const auto pending = observe<Fix>(manager->currentFix(15));
    manager.reset();
    EXPECT_TRUE(wasAbandoned(replaced));
    EXPECT_TRUE(wasAbandoned(pending));

    make(NotDetermined);
    const auto asking = observe<AuthorizationStatus>(manager->requestPermission());
    const auto fix = observe<Fix>(manager->currentFix(15)); // waits for the same answer
    manager.reset();
    settle();
    EXPECT_TRUE(wasAbandoned(asking));
    EXPECT_TRUE(wasAbandoned(fix));
}

TEST_F(LocationManagerTest, TimerAfterTheManagersDestructionDoesNothing)
{
    make();
    const auto outcome = observe<Fix>(manager->currentFix(0.02));
    manager.reset();
    EXPECT_TRUE(outcome->done);
    EXPECT_FALSE(spinUntil([&] { return !wasAbandoned(outcome); }, 80ms));
}

TEST_F(LocationManagerTest, ManagerMayBeDestroyedByItsOwnSignals)
{
    make(NotDetermined);
    const auto asking = observe<AuthorizationStatus>(manager->requestPermission());
    QObject::connect(manager.get(), &LocationManager::authorizationChanged, [this] { manager.reset(); });
    source->answer(Denied);
    settle();
    EXPECT_TRUE(wasAbandoned(asking));

    make();
    const auto fix = observe<Fix>(manager->currentFix(15));
    QObject::connect(manager.get(), &LocationManager::lastFixChanged, [this] { manager.reset(); });
    source->deliver({office});
    settle();
    EXPECT_TRUE(wasAbandoned(fix));
}

using LocationManagerDeathTest = LocationManagerTest;

TEST_F(LocationManagerDeathTest, InvalidTimeLimitsEndTheProgram)
{
    for (const double seconds :
         {-1.0, std::numeric_limits<double>::infinity(), 1e11, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_DEATH(
            {
                make();
                observe<Fix>(manager->currentFix(seconds));
            },
            "time limit is out of range")
            << seconds;
    }
}

TEST_F(LocationManagerTest, LongTimeLimitsAreAccepted)
{
    make();
    const auto outcome = observe<Fix>(manager->currentFix(1e10));
    settle();
    EXPECT_FALSE(outcome->done);
}

} // namespace
} // namespace clockwell
