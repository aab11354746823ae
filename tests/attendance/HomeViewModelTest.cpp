#include "attendance/HomeViewModel.h"

#include "HomeServices.h"
#include "ui/Palette.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono;
using namespace std::chrono_literals;

namespace clockwell {
namespace {

using namespace test::replies;
using test::await;

class HomeViewModelTest : public ::testing::Test
{
protected:
    HomeViewModelTest()
    {
        model->setAttendance(services.store.get());
        model->setLocation(services.location.get());
        model->setFullName(u"Ada Lovelace"_s);
    }
    void load(const QByteArray &reply)
    {
        services.expectToday(reply);
        await(services.store->loadToday());
    }
    void locate(const QByteArray &reply)
    {
        services.expectDistance(reply);
        await(services.store->checkDistance(services.location.get()));
    }
    QStringList requestedPaths() const
    {
        QStringList paths;
        for (const auto &request : services.server.requests())
            paths.append(request.path.section(QLatin1Char('/'), -1));
        return paths;
    }

    DateFormats::Instant now = sys_days(2025y / March / 3) + 11h + 59min;
    test::HomeServices services;
    std::unique_ptr<HomeViewModel> model =
        std::make_unique<HomeViewModel>([this] { return now; }, DateFormats("en_US", "UTC"));
};

TEST_F(HomeViewModelTest, GreetsByTheClock)
{
    EXPECT_EQ(model->greeting(), u"Good morning, Ada"_s);
    EXPECT_EQ(model->dateLine(), u"Monday, 3 Mar 2025"_s);
    now += 1min;
    EXPECT_EQ(model->greeting(), u"Good afternoon, Ada"_s);
    now += 5h;
    EXPECT_EQ(model->greeting(), u"Good evening, Ada"_s);
    model->setFullName({});
    EXPECT_EQ(model->greeting(), u"Good evening"_s);
}

TEST_F(HomeViewModelTest, GreetingAndDateAreUpdatedWithEveryOtherChange)
{
    services.server.expect("GET", "/api/attendance/today").reply(500, R"({"message":"Down"})");
    services.server.expect("GET", "/api/attendance/distance").reply(500, R"({"message":"Down"})");
    const QList<std::pair<const char *, std::function<void()>>> changes{
        {"a position", [this] { locate(inside); }},
        {"a failed check", [this] { await(services.store->checkDistance(services.location.get())); }},
        {"a failed load", [this] { await(services.store->loadToday()); }},
        {"a dismissed banner", [this] { services.store->setBanner({}); }},
        {"a new banner", [this] { services.store->setBanner(Banner{.text = u"Down"_s}); }},
        {"a punch", [this] { QMetaObject::invokeMethod(services.store.get(), "punchingChanged"); }},
        {"a permission",
         [this] {
             services.source->answer(AuthorizationStatus::Denied);
             QCoreApplication::processEvents();
         }},
    };
    QString shown; // as a binding would
    QObject::connect(model.get(), &HomeViewModel::headerChanged,
                     [&] { shown = model->greeting() + u' ' + model->dateLine(); });
    for (const auto &[name, change] : changes) {
        now += 27h;
        change();
        const QString expected = model->greeting() + u' ' + model->dateLine();
        EXPECT_EQ(shown.toStdString(), expected.toStdString()) << name;
    }
}

TEST_F(HomeViewModelTest, BeforeTheFirstResponse)
{
    EXPECT_EQ(model->officeName(), u"—"_s);
    EXPECT_EQ(model->hoursLine(), QString());
    EXPECT_FALSE(model->hasRecord());
    EXPECT_EQ(model->checkInText() + model->checkOutText() + model->workedText(), u"———"_s);
    EXPECT_FALSE(model->isDayComplete());
    EXPECT_EQ(model->punchTitle(), u"Check In"_s);
    EXPECT_EQ(model->punchColor().rgba(), palette::success);
    EXPECT_FALSE(model->isLocated());
    EXPECT_EQ(model->geofenceSymbol(), u"location.slash.fill"_s);
    EXPECT_EQ(model->locatingText(), u"Tap refresh"_s);
    EXPECT_EQ(model->hint(), QString());
}

TEST_F(HomeViewModelTest, AtWork)
{
    load(atWork);
    EXPECT_EQ(model->officeName(), u"Head Office"_s);
    EXPECT_EQ(model->hoursLine(), u"Hours 09:30–18:00 · within 150m"_s);
    EXPECT_TRUE(model->hasRecord());
    EXPECT_EQ(model->recordStatus(), u"LATE"_s);
    EXPECT_EQ(model->checkInText(), u"9:42 AM"_s);
    EXPECT_EQ(model->checkOutText(), u"—"_s);
    EXPECT_EQ(model->workedText(), u"—"_s);
    EXPECT_EQ(model->punchTitle(), u"Check Out"_s);
    EXPECT_EQ(model->punchColor().rgba(), palette::warning);
}

TEST_F(HomeViewModelTest, AfterTheDay)
{
    load(complete);
    EXPECT_TRUE(model->isDayComplete());
    EXPECT_EQ(model->checkOutText(), u"5:09 PM"_s);
    EXPECT_EQ(model->workedText(), u"8h 5m"_s);
}

TEST_F(HomeViewModelTest, CheckOutIsOfferedWhenBothPunchesAreAllowed)
{
    load(today("null", true, true));
    EXPECT_EQ(model->punchTitle(), u"Check Out"_s);
    EXPECT_FALSE(model->isDayComplete());
    EXPECT_FALSE(model->hasRecord());
}

TEST_F(HomeViewModelTest, ShowsInsideAndOutside)
{
    locate(inside);
    EXPECT_TRUE(model->isLocated());
    EXPECT_EQ(model->geofenceSymbol(), u"checkmark.shield.fill"_s);
    EXPECT_EQ(model->geofenceColor().rgba(), palette::success);
    EXPECT_EQ(model->distanceText(), u"37m"_s);
    EXPECT_EQ(model->insideText(), u"Inside geofence"_s);
    EXPECT_EQ(model->nearestLine(), u"Nearest: Head Office · radius 150m"_s);
    locate(outside);
    EXPECT_EQ(model->geofenceSymbol(), u"location.slash.fill"_s);
    EXPECT_EQ(model->geofenceColor().rgba(), palette::warning);
    EXPECT_EQ(model->distanceText(), u"1240m"_s);
    EXPECT_EQ(model->insideText(), u"Outside"_s);
    EXPECT_EQ(model->nearestLine(), u"Nearest: — · radius 150m"_s);
}

TEST_F(HomeViewModelTest, ShowsThatItIsLocating)
{
    services.source->immediate.reset();
    QSignalSpy busy(model.get(), &HomeViewModel::busyChanged);
    model->refreshLocation();
    EXPECT_EQ(model->locatingText(), u"Locating"_s);
    EXPECT_TRUE(model->isCheckingDistance());
    services.source->fail(LocationSource::Failure::Other);
    ASSERT_TRUE(services.settle(0));
    EXPECT_EQ(model->locatingText(), u"Tap refresh"_s);
    EXPECT_EQ(busy.count(), 2);
}

TEST_F(HomeViewModelTest, HintShowsForDeniedAndRestrictedOnly)
{
    const QString hint = u"Location is off. Enable it in Settings › Qor › Location."_s;
    using enum AuthorizationStatus;
    const QList<std::pair<AuthorizationStatus, QString>> cases = {{NotDetermined, {}},
                                                                  {Restricted, hint},
                                                                  {Denied, hint},
                                                                  {AuthorizedAlways, {}},
                                                                  {AuthorizedWhenInUse, {}}};
    QSignalSpy changed(model.get(), &HomeViewModel::hintChanged);
    for (const auto &[status, text] : cases) {
        services.source->answer(status);
        QCoreApplication::processEvents();
        EXPECT_EQ(model->hint(), text) << static_cast<int>(status);
    }
    EXPECT_GE(changed.count(), 4);
}

TEST_F(HomeViewModelTest, EachAppearanceLoadsTodayAndThenTheDistance)
{
    for (int i = 1; i <= 2; ++i) {
        services.expectToday(beforeCheckIn);
        services.expectDistance(inside);
        QSignalSpy moment(model.get(), &HomeViewModel::headerChanged);
        model->setShown(true);
        EXPECT_GE(moment.count(), 1);
        ASSERT_TRUE(services.settle(2 * i));
        model->setShown(false);
    }
    EXPECT_EQ(requestedPaths(), (QStringList{u"today"_s, u"distance"_s, u"today"_s, u"distance"_s}));
}

TEST_F(HomeViewModelTest, SettingShownAgainLoadsNothing)
{
    services.expectToday(beforeCheckIn);
    services.expectDistance(inside);
    model->setShown(true);
    model->setShown(true);
    ASSERT_TRUE(services.settle(2));
    EXPECT_EQ(services.server.requests().size(), 2);
}

TEST_F(HomeViewModelTest, ChecksTheDistanceAfterAFailedLoadOfToday)
{
    services.server.expect("GET", "/api/attendance/today").reply(500);
    services.expectDistance(inside);
    model->setShown(true);
    ASSERT_TRUE(services.settle(2));
    EXPECT_TRUE(model->isLocated());
}

TEST_F(HomeViewModelTest, SendsNoRequestAfterItsDestruction)
{
    services.server.expect("GET", "/api/attendance/today").after(1s).reply(200, beforeCheckIn);
    model->setShown(true);
    ASSERT_TRUE(services.server.waitForRequests(1));
    model.reset();
    ASSERT_TRUE(services.settle(1));
    EXPECT_TRUE(services.store->today()); // the store still exists
    EXPECT_EQ(services.source->locationRequests, 0);
}

TEST_F(HomeViewModelTest, WorksWithoutServices)
{
    HomeViewModel empty;
    empty.setShown(true);
    empty.refresh();
    empty.refreshLocation();
    empty.punch();
    EXPECT_EQ(empty.punchTitle(), u"Check In"_s);
    services.store.reset();
    services.location.reset();
    EXPECT_EQ(model->officeName(), u"—"_s);
    EXPECT_EQ(model->hint(), QString());
}

} // namespace
} // namespace clockwell
