#include "HomeServices.h"
#include "support/screen/QmlStage.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace clockwell {
namespace {

using namespace test::replies;
using test::spinUntil;

const Fix office{12.9715987, 77.5945627, 8.5};

/// A punch on the home screen that waits for its position while a check of the distance needs the position,
/// too.
class PunchPositionTest : public ::testing::Test
{
protected:
    PunchPositionTest() { services.source->immediate.reset(); }
    void open()
    {
        stage = std::make_unique<test::QmlStage>(u"Clockwell/Attendance/HomeView.qml"_s,
                                                 services.properties(u"Ada Lovelace"_s));
        QObject::connect(services.store.get(), &AttendanceStore::bannerChanged, [this] { ++banners; });
    }
    /// Opens the screen and waits for the first responses.
    void openAndSettle()
    {
        services.expectToday(beforeCheckIn);
        services.expectDistance(outside);
        services.source->immediate = office;
        open();
        ASSERT_TRUE(services.settle(2));
        services.source->immediate.reset();
        services.source->locationRequests = 0;
    }
    void tapCheckIn()
    {
        ASSERT_TRUE(stage->screen().click(u"Check In"_s, QAccessible::Button));
        ASSERT_TRUE(services.store->punching());
    }
    void tapRefresh()
    {
        ASSERT_TRUE(stage->screen().click(u"Refresh my location"_s, QAccessible::Button));
        ASSERT_TRUE(services.store->checkingDistance());
    }
    /// The punch, the day, and the distance twice: for the concurrent check and for the check after the
    /// punch.
    void expectCheckIn()
    {
        services.server.expect("POST", "/api/attendance/punch").reply(200, checkedIn);
        services.expectToday(atWork);
        services.server.expect("GET", "/api/attendance/distance").times(2).reply(200, inside);
    }
    void deliver()
    {
        services.source->immediate = office; // for the check after the punch
        services.source->deliver({office});
    }
    bool shows(const QString &text)
    {
        return stage->screen().waitFor(text) ||
               (ADD_FAILURE() << stage->screen().dump().toStdString(), false);
    }
    int punches() const { return services.server.count(u"/api/attendance/punch"_s); }

    test::HomeServices services;
    std::unique_ptr<test::QmlStage> stage;
    int banners = 0;
};

TEST_F(PunchPositionTest, CheckAfterTheFirstResponseSharesThePosition)
{
    services.server.expect("GET", "/api/attendance/today").after(1s).reply(200, beforeCheckIn);
    open();
    tapCheckIn();
    ASSERT_TRUE(spinUntil([&] { return services.store->checkingDistance(); }));
    EXPECT_EQ(services.source->locationRequests, 1);
    expectCheckIn();
    deliver();
    EXPECT_TRUE(shows(u"Checked in at Head Office · LATE · 12m late"_s));
    EXPECT_TRUE(services.settle(5));
    EXPECT_EQ(punches(), 1);
}

TEST_F(PunchPositionTest, RefreshMyLocationSharesThePosition)
{
    openAndSettle();
    tapCheckIn();
    tapRefresh();
    EXPECT_EQ(services.source->locationRequests, 1);
    expectCheckIn();
    deliver();
    EXPECT_TRUE(shows(u"Checked in at Head Office · LATE · 12m late"_s));
    EXPECT_TRUE(services.settle(6));
    EXPECT_EQ(punches(), 1);
}

TEST_F(PunchPositionTest, ReturningToTheTabSharesThePosition)
{
    openAndSettle();
    tapCheckIn();
    stage->root()->setVisible(false);
    services.expectToday(beforeCheckIn);
    stage->root()->setVisible(true);
    ASSERT_TRUE(spinUntil([&] { return services.store->checkingDistance(); }));
    EXPECT_EQ(services.source->locationRequests, 1);
    expectCheckIn();
    deliver();
    EXPECT_TRUE(shows(u"Checked in at Head Office · LATE · 12m late"_s));
    EXPECT_TRUE(services.settle(7));
    EXPECT_EQ(punches(), 1);
}

TEST_F(PunchPositionTest, RefusedPunchStillShowsTheRequestedDistance)
{
    openAndSettle();
    tapCheckIn();
    tapRefresh();
    services.server.expect("POST", "/api/attendance/punch").reply(403, R"({"message":"You are outside"})");
    services.expectDistance(inside);
    services.source->deliver({office});
    EXPECT_TRUE(shows(u"You are outside"_s));
    EXPECT_TRUE(shows(u"37m"_s));
    EXPECT_TRUE(services.settle(4));
    EXPECT_EQ(services.source->locationRequests, 1);
}

TEST_F(PunchPositionTest, MissingPositionShowsOneBanner)
{
    openAndSettle();
    tapCheckIn();
    tapRefresh();
    services.source->fail(LocationSource::Failure::Other);
    EXPECT_TRUE(shows(u"Location is unavailable right now."_s));
    EXPECT_TRUE(services.settle(2));
    EXPECT_EQ(banners, 1);
    EXPECT_EQ(punches(), 0);
}

TEST_F(PunchPositionTest, WithdrawnPermissionShowsOneBanner)
{
    openAndSettle();
    tapCheckIn();
    tapRefresh();
    services.source->answer(AuthorizationStatus::Denied);
    services.source->fail(LocationSource::Failure::Denied);
    EXPECT_TRUE(shows(u"Location permission is off. Enable it in Settings to mark attendance."_s));
    EXPECT_TRUE(services.settle(2));
    EXPECT_EQ(banners, 1);
    EXPECT_EQ(punches(), 0);
}

class PunchPermissionTest : public PunchPositionTest
{
protected:
    /// Opens the screen with the permission prompt pending, for which both a punch and a check are waiting.
    void openAndAsk()
    {
        services.source->status = AuthorizationStatus::NotDetermined;
        services.expectToday(beforeCheckIn);
        open();
        ASSERT_TRUE(spinUntil([&] { return services.source->permissionRequests == 1; }));
        tapCheckIn();
        tapRefresh();
    }
};

TEST_F(PunchPermissionTest, GrantedPermissionContinuesThePunch)
{
    openAndAsk();
    services.source->answer(AuthorizationStatus::AuthorizedWhenInUse);
    ASSERT_TRUE(spinUntil([&] { return services.source->locationRequests > 0; }));
    expectCheckIn();
    deliver();
    EXPECT_TRUE(shows(u"Checked in at Head Office · LATE · 12m late"_s));
    EXPECT_TRUE(services.settle(5));
    EXPECT_EQ(punches(), 1);
}

TEST_F(PunchPermissionTest, RefusedPermissionShowsOneBanner)
{
    openAndAsk();
    services.source->answer(AuthorizationStatus::Denied);
    EXPECT_TRUE(shows(u"Location permission is off. Enable it in Settings to mark attendance."_s));
    EXPECT_TRUE(services.settle(1));
    EXPECT_EQ(banners, 1);
    EXPECT_EQ(services.source->locationRequests, 0);
}

} // namespace
} // namespace clockwell
