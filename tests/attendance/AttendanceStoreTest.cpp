#include "attendance/AttendanceStore.h"

#include "Replies.h"
#include "ScriptedLocationSource.h"
#include "attendance/LocationManager.h"
#include "net/APIClient.h"
#include "net/DeviceFacts.h"
#include "net/SessionEvents.h"
#include "support/Await.h"
#include "support/FakeServer.h"
#include "support/MemoryTokenStore.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace clockwell {
namespace {

using namespace test::replies;
using test::await;
using test::observe;
using test::spinUntil;

const char *const todayPath = "/api/attendance/today";
const char *const distancePath = "/api/attendance/distance";
const char *const punchPath = "/api/attendance/punch";
const char *const historyPath = "/api/attendance/me";
const char *const summaryPath = "/api/attendance/me/summary";

class AttendanceStoreTest : public ::testing::Test
{
protected:
    AttendanceStoreTest()
    {
        auto made = std::make_unique<test::ScriptedLocationSource>();
        source = made.get();
        source->immediate = Fix{12.9715987, 77.5945627, 8.5};
        location = std::make_unique<LocationManager>(std::move(made));
    }
    APIClient::Options options() const
    {
        APIClient::Options result;
        result.baseURL = server.url(u"/api"_s);
        return result;
    }
    std::string bannerText() const
    {
        return store->banner() ? store->banner()->text.toStdString() : "(none)";
    }
    bool isIdle() const { return !store->loadingToday() && !store->punching() && !store->checkingDistance(); }

    test::FakeServer server;
    test::MemoryTokenStore tokens{u"a1"_s, u"r1"_s};
    SessionEvents events;
    APIClient api{options(), tokens, events};
    std::unique_ptr<LocationManager> location;
    test::ScriptedLocationSource *source = nullptr;
    std::unique_ptr<AttendanceStore> store =
        std::make_unique<AttendanceStore>(api, [] { return u"DEVICE-1"_s; });
};

TEST_F(AttendanceStoreTest, StartsEmpty)
{
    EXPECT_FALSE(store->today() || store->live() || store->summary() || store->banner());
    EXPECT_TRUE(store->history().isEmpty());
    EXPECT_TRUE(isIdle());
}

TEST_F(AttendanceStoreTest, LoadsToday)
{
    server.expect("GET", todayPath).withHeader("Authorization", "Bearer a1").reply(200, atWork);
    QList<bool> flags;
    QObject::connect(store.get(), &AttendanceStore::loadingTodayChanged,
                     [&] { flags.append(store->loadingToday()); });
    await(store->loadToday());
    ASSERT_TRUE(store->today());
    EXPECT_EQ(store->today()->office.name, u"Head Office"_s);
    EXPECT_EQ(store->today()->record->lateMinutes, 12);
    EXPECT_EQ(flags, (QList{true, false}));
    EXPECT_TRUE(server.requests().at(0).query.isEmpty());
    EXPECT_FALSE(store->banner());
}

TEST_F(AttendanceStoreTest, NullTodayIsStoredAsEmpty)
{
    server.expect("GET", todayPath).reply(200, atWork);
    server.expect("GET", todayPath).reply(200, "null");
    await(store->loadToday());
    await(store->loadToday());
    EXPECT_FALSE(store->today());
    EXPECT_FALSE(store->banner());
}

TEST_F(AttendanceStoreTest, FailedLoadOfTodayKeepsTheOldDayAndShowsTheServersMessage)
{
    server.expect("GET", todayPath).reply(200, atWork);
    server.expect("GET", todayPath).reply(403, R"({"message":"Not today","error":"X"})");
    await(store->loadToday());
    await(store->loadToday());
    EXPECT_TRUE(store->today());
    EXPECT_EQ(bannerText(), "Not today");
    EXPECT_EQ(store->banner()->kind, Banner::Kind::Error);
    EXPECT_TRUE(isIdle());
}

TEST_F(AttendanceStoreTest, TransportErrorShowsThePlatformsMessage)
{
    server.goDown();
    await(store->loadToday());
    EXPECT_EQ(bannerText(), "Could not connect to the server.");
    EXPECT_TRUE(isIdle());
}

TEST_F(AttendanceStoreTest, ChecksTheDistanceWithTheShortestDecimalsOfThePosition)
{
    server.expect("GET", distancePath).reply(200, inside);
    const auto outcome = observe<void>(store->checkDistance(location.get()));
    EXPECT_TRUE(store->checkingDistance());
    ASSERT_TRUE(spinUntil([&] { return outcome->done; }));
    EXPECT_EQ(server.requests().at(0).query,
              (QMap<QString, QString>{{u"lat"_s, u"12.9715987"_s}, {u"lng"_s, u"77.5945627"_s}}));
    ASSERT_TRUE(store->live());
    EXPECT_EQ(store->live()->distanceMeters, 37.9);
    EXPECT_TRUE(isIdle());
}

TEST_F(AttendanceStoreTest, NullDistanceIsStoredAsEmpty)
{
    server.expect("GET", distancePath).reply(200, inside);
    server.expect("GET", distancePath).reply(200, "null");
    await(store->checkDistance(location.get()));
    await(store->checkDistance(location.get()));
    EXPECT_FALSE(store->live());
}

TEST_F(AttendanceStoreTest, FailedCheckKeepsTheOldDistance)
{
    server.expect("GET", distancePath).reply(200, inside);
    server.expect("GET", distancePath).reply(500, "<html>");
    await(store->checkDistance(location.get()));
    await(store->checkDistance(location.get()));
    EXPECT_TRUE(store->live());
    EXPECT_EQ(bannerText(), "Request failed (500).");
    EXPECT_TRUE(isIdle());
}

TEST_F(AttendanceStoreTest, WithoutPermissionNoRequestIsSent)
{
    source->status = AuthorizationStatus::Denied;
    await(store->checkDistance(location.get()));
    EXPECT_EQ(bannerText(), "Location permission is off. Enable it in Settings to mark attendance.");
    store->setBanner({});
    await(store->punch(location.get()));
    EXPECT_EQ(bannerText(), "Location permission is off. Enable it in Settings to mark attendance.");
    EXPECT_TRUE(server.requests().isEmpty());
    EXPECT_TRUE(isIdle());
}

TEST_F(AttendanceStoreTest, PlatformFailureIsShown)
{
    source->immediate.reset();
    const auto outcome = observe<void>(store->checkDistance(location.get()));
    source->fail(LocationSource::Failure::Other);
    ASSERT_TRUE(spinUntil([&] { return outcome->done; }));
    EXPECT_EQ(bannerText(), "Location is unavailable right now.");
    EXPECT_TRUE(isIdle());
}

TEST_F(AttendanceStoreTest, PunchSendsItsBodyAndThenReloadsInOrder)
{
    server.expect("POST", punchPath).reply(200, checkedIn);
    server.expect("GET", todayPath).reply(200, atWork);
    server.expect("GET", distancePath).reply(200, inside);
    const auto outcome = observe<void>(store->punch(location.get()));
    EXPECT_TRUE(store->punching());
    ASSERT_TRUE(spinUntil([&] { return outcome->done; }));
    const auto requests = server.requests();
    ASSERT_EQ(requests.size(), 3);
    EXPECT_EQ(requests.at(0).body, R"({"lat":12.9715987,"lng":77.5945627,"accuracy":8.5,)"
                                   R"("deviceId":"DEVICE-1","isMockLocation":false})");
    EXPECT_EQ(requests.at(1).path, QString::fromLatin1(todayPath));
    EXPECT_EQ(requests.at(2).path, QString::fromLatin1(distancePath));
    EXPECT_EQ(source->locationRequests, 2);
    EXPECT_EQ(bannerText(), "Checked in at Head Office · LATE · 12m late");
    EXPECT_EQ(store->banner()->kind, Banner::Kind::Success);
    EXPECT_TRUE(store->today() && store->live());
    EXPECT_TRUE(isIdle());
}

TEST_F(AttendanceStoreTest, PunchingLastsUntilTheReloadsEnd)
{
    server.expect("POST", punchPath).reply(200, checkedOut);
    server.expect("GET", todayPath).reply(200, complete);
    server.expect("GET", distancePath).after(1s).reply(200, inside);
    const auto outcome = observe<void>(store->punch(location.get()));
    ASSERT_TRUE(server.waitForRequests(3));
    EXPECT_TRUE(store->punching());
    EXPECT_EQ(bannerText(), "Checked out · worked 8h 5m"); // shown before the reloads end
    ASSERT_TRUE(spinUntil([&] { return outcome->done; }));
    EXPECT_FALSE(store->punching());
}

TEST_F(AttendanceStoreTest, InvalidAccuracyIsSentAsZero)
{
    source->immediate = Fix{1.5, 2.5, -1};
    server.expect("POST", punchPath).reply(403, R"({"message":"Outside"})");
    await(store->punch(location.get()));
    EXPECT_EQ(server.requests().at(0).body,
              R"({"lat":1.5,"lng":2.5,"accuracy":0.0,"deviceId":"DEVICE-1","isMockLocation":false})");
}

TEST_F(AttendanceStoreTest, FailedPunchReloadsNothing)
{
    server.expect("GET", todayPath).reply(200, beforeCheckIn);
    server.expect("GET", distancePath).reply(200, outside);
    server.expect("POST", punchPath).reply(400, R"({"message":["You are outside","the geofence"]})");
    await(store->loadToday());
    await(store->checkDistance(location.get()));
    await(store->punch(location.get()));
    EXPECT_EQ(bannerText(), "You are outside, the geofence");
    EXPECT_EQ(server.requests().size(), 3);
    EXPECT_TRUE(store->today()->canCheckIn);
    EXPECT_FALSE(store->live()->inside);
    EXPECT_TRUE(isIdle());
}

TEST_F(AttendanceStoreTest, UnreadablePunchReplyIsAnError)
{
    server.expect("POST", punchPath).reply(200, "null");
    await(store->punch(location.get()));
    EXPECT_EQ(bannerText(), "Unexpected response from server.");
    EXPECT_TRUE(isIdle());
}

TEST_F(AttendanceStoreTest, SameTextTwiceIsTwoBanners)
{
    server.expect("GET", todayPath).times(2).reply(500, R"({"message":"Down"})");
    int changes = 0;
    QObject::connect(store.get(), &AttendanceStore::bannerChanged, [&] { ++changes; });
    await(store->loadToday());
    const QUuid first = store->banner()->id;
    await(store->loadToday());
    EXPECT_EQ(bannerText(), "Down");
    EXPECT_NE(store->banner()->id, first);
    EXPECT_EQ(changes, 2);
}

TEST_F(AttendanceStoreTest, HistoryKeepsTheServersOrder)
{
    server.expect("GET", historyPath)
        .reply(200, R"([{"id":"b","workDate":"2025-03-01","status":"LATE"},)"
                    R"({"id":"c","workDate":"2025-03-03","status":"X"},)"
                    R"({"id":"a","workDate":"2025-03-02","status":"ON_TIME"}])");
    await(store->loadHistory());
    ASSERT_EQ(store->history().size(), 3);
    EXPECT_EQ(store->history().at(0).id + store->history().at(1).id + store->history().at(2).id, u"bca"_s);
}

TEST_F(AttendanceStoreTest, SummaryRequestsItsMonth)
{
    server.expect("GET", summaryPath)
        .reply(200, R"({"month":"2025-03","presentDays":1,"lateDays":2,"totalLateMinutes":3,"absentDays":4,)"
                    R"("leaveDays":5,"halfDays":6,"totalWorkingMinutes":7})");
    await(store->loadSummary(u"2025-03"_s));
    EXPECT_EQ(server.requests().at(0).query, (QMap<QString, QString>{{u"month"_s, u"2025-03"_s}}));
    ASSERT_TRUE(store->summary());
    EXPECT_EQ(store->summary()->totalWorkingMinutes, 7);
    server.expect("GET", summaryPath).reply(200, "null");
    await(store->loadSummary(u"2025-03"_s));
    EXPECT_FALSE(store->summary());
}

TEST_F(AttendanceStoreTest, HistoryAndSummaryFailSilently)
{
    server.expect("GET", historyPath).reply(200, R"([{"id":"b","workDate":"2025-03-01","status":"LATE"}])");
    server.expect("GET", historyPath).reply(500);
    server.expect("GET", summaryPath).reply(200, "{}");
    await(store->loadHistory());
    await(store->loadHistory());
    await(store->loadSummary(u"2025-03"_s));
    EXPECT_EQ(store->history().size(), 1);
    EXPECT_FALSE(store->summary());
    EXPECT_FALSE(store->banner());
}

TEST_F(AttendanceStoreTest, FirstOfTwoOverlappingLoadsDoesNotStopTheSpinner)
{
    server.expect("GET", todayPath).reply(200, atWork);
    server.expect("GET", todayPath).after(1s).reply(200, complete);
    const auto first = observe<void>(store->loadToday());
    const auto second = observe<void>(store->loadToday());
    ASSERT_TRUE(spinUntil([&] { return first->done || second->done; }));
    EXPECT_TRUE(store->loadingToday());
    ASSERT_TRUE(spinUntil([&] { return first->done && second->done; }));
    EXPECT_FALSE(store->loadingToday());
}

TEST_F(AttendanceStoreTest, CheckReplacedByAPunchLeavesNoSpinnerOn)
{
    source->immediate.reset();
    const auto check = observe<void>(store->checkDistance(location.get()));
    const auto punch = observe<void>(store->punch(location.get()));
    source->fail(LocationSource::Failure::Other);
    ASSERT_TRUE(spinUntil([&] { return check->done && punch->done; }));
    EXPECT_EQ(bannerText(), "Location is unavailable right now.");
    EXPECT_TRUE(isIdle());
    EXPECT_TRUE(server.requests().isEmpty());
}

TEST_F(AttendanceStoreTest, ReloadReplacedByACheckEndsThePunch)
{
    server.expect("POST", punchPath).reply(200, checkedIn);
    server.expect("GET", todayPath).reply(200, atWork);
    server.expect("GET", distancePath).reply(200, inside);
    const auto punch = observe<void>(store->punch(location.get()));
    QObject::connect(
        store.get(), &AttendanceStore::todayChanged, [&] { source->immediate.reset(); });
    ASSERT_TRUE(
        spinUntil([&] { return source->locationRequests == 2; })); // the reload waits for its position
    const auto check = observe<void>(store->checkDistance(location.get()));
    source->deliver({Fix{1, 2, 3}});
    ASSERT_TRUE(spinUntil([&] { return check->done && punch->done; }));
    EXPECT_EQ(server.requests().last().query.value(u"lat"_s), u"1"_s);
    EXPECT_EQ(bannerText(), "Checked in at Head Office · LATE · 12m late");
    EXPECT_TRUE(isIdle());
}

TEST_F(AttendanceStoreTest, DestroyedStoreEndsItsOperations)
{
    server.expect("GET", todayPath).after(1s).reply(200, atWork);
    server.expect("POST", punchPath).after(1s).reply(200, checkedIn);
    const auto today = observe<void>(store->loadToday());
    const auto punch = observe<void>(store->punch(location.get()));
    ASSERT_TRUE(server.waitForRequests(2));
    store.reset();
    ASSERT_TRUE(spinUntil([&] { return today->done && punch->done; }));
    EXPECT_TRUE(today->error && punch->error);
    EXPECT_EQ(server.requests().size(), 2); // no reloads
}

TEST_F(AttendanceStoreTest, DestroyedLocationManagerStopsTheSpinner)
{
    source->immediate.reset();
    const auto punch = observe<void>(store->punch(location.get()));
    location.reset();
    EXPECT_TRUE(spinUntil([&] { return punch->done; }));
    EXPECT_TRUE(isIdle());
    EXPECT_EQ(bannerText(), "Location is unavailable right now.");
    store->setBanner({});
    const auto check = observe<void>(store->checkDistance(location.get()));
    EXPECT_TRUE(check->done);
    EXPECT_FALSE(store->banner());
    EXPECT_TRUE(isIdle());
    await(store->punch(location.get()));
    EXPECT_EQ(bannerText(), "Location is unavailable right now.");
}

TEST_F(AttendanceStoreTest, PunchWhosePositionRequestIsReplacedShowsAnError)
{
    source->immediate.reset();
    const auto punch = observe<void>(store->punch(location.get()));
    const auto other = observe<Fix>(location->currentFix(15));
    ASSERT_TRUE(spinUntil([&] { return punch->done; }));
    EXPECT_EQ(bannerText(), "Location is unavailable right now.");
    EXPECT_EQ(store->banner()->kind, Banner::Kind::Error);
    EXPECT_TRUE(isIdle());
    EXPECT_FALSE(other->done);
}

TEST_F(AttendanceStoreTest, FirstOfTwoPunchesIsReplacedAndShowsAnError)
{
    source->immediate.reset();
    server.expect("POST", punchPath).reply(403, R"({"message":"Outside"})");
    const auto first = observe<void>(store->punch(location.get()));
    const auto second = observe<void>(store->punch(location.get()));
    ASSERT_TRUE(spinUntil([&] { return first->done; }));
    EXPECT_EQ(bannerText(), "Location is unavailable right now.");
    source->deliver({Fix{1, 2, 3}});
    ASSERT_TRUE(spinUntil([&] { return second->done; }));
    EXPECT_EQ(bannerText(), "Outside");
    EXPECT_TRUE(isIdle());
}

TEST_F(AttendanceStoreTest, CheckThatSharesThePunchsPositionEndsWithTheStore)
{
    source->immediate.reset();
    const auto punch = observe<void>(store->punch(location.get()));
    const auto check = observe<void>(store->checkDistance(location.get()));
    store.reset();
    source->deliver({Fix{1, 2, 3}});
    ASSERT_TRUE(spinUntil([&] { return punch->done && check->done; }));
    EXPECT_TRUE(punch->error && check->error);
    EXPECT_TRUE(server.requests().isEmpty());
}

TEST_F(AttendanceStoreTest, SendsTheDevicesIdByDefault)
{
    AttendanceStore plain(api);
    server.expect("POST", punchPath).reply(500);
    await(plain.punch(location.get()));
    const QJsonObject body = QJsonDocument::fromJson(server.requests().at(0).body).object();
    EXPECT_EQ(body.value(u"deviceId"_s).toString(), currentDeviceId());
}

} // namespace
} // namespace clockwell
