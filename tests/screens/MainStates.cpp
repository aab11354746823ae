#include "State.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace clockwell::test {

namespace {

const QByteArray headOffice = "Head Office";
const QByteArray longOffice =
    "Regional Administrative Centre for the Northern Districts and Islands, Annexe B";

QByteArray today(const QByteArray &rest, const QByteArray &office = headOffice)
{
    return R"({"workDate":"2026-03-02","open":true,"office":{"name":")" + office +
           R"(","checkInTime":"09:30","checkOutTime":"18:00","radiusMeters":150},)" + rest + "}";
}

QByteArray record(const QByteArray &rest)
{
    return R"("record":{"id":"1","workDate":"2026-03-02",)" + rest + "},";
}

QByteArray distance(bool inside, const QByteArray &meters, const QByteArray &office = headOffice)
{
    return R"({"inside":)" + QByteArray(inside ? "true" : "false") + R"(,"distanceMeters":)" + meters +
           R"(,"radiusMeters":150,"office":")" + office + R"("})";
}

const QByteArray mayCheckIn = today(R"("canCheckIn":true,"canCheckOut":false)");
const QByteArray mayCheckOut =
    today(record(R"("status":"LATE","checkInAt":"2026-03-02T09:42:10.000Z","lateMinutes":12)") +
          R"("canCheckIn":false,"canCheckOut":true)");
const QByteArray complete = today(record(R"("status":"ON_TIME","checkInAt":"2026-03-02T09:04:00.000Z",)"
                                         R"("checkOutAt":"2026-03-02T18:09:00.000Z","workingMinutes":545)") +
                                  R"("canCheckIn":false,"canCheckOut":false)");

/// Opens the signed-in app with these responses for the day and the distance.
bool home(Stage &stage, const QByteArray &day, const QByteArray &place, const QString &expected,
          const QByteArray &name = "Ada Byron")
{
    stage.server().expect("GET", "/api/attendance/today").anyNumber().reply(200, day);
    stage.server().expect("GET", "/api/attendance/distance").anyNumber().reply(200, place);
    return stage.startAs(name) && stage.screen().waitFor(expected);
}

bool inside(Stage &stage)
{
    return home(stage, mayCheckIn, distance(true, "37.4"), u"Inside geofence"_s);
}

bool outside(Stage &stage)
{
    return home(stage, mayCheckIn, distance(false, "1284.9"), u"Outside"_s);
}

bool checkedIn(Stage &stage)
{
    return home(stage, mayCheckOut, distance(true, "12.9"), u"Check Out"_s) &&
           stage.screen().waitFor(u"Inside geofence"_s);
}

bool dayComplete(Stage &stage)
{
    return home(stage, complete, distance(true, "12.9"), u"Attendance complete for today"_s) &&
           stage.screen().waitFor(u"Inside geofence"_s);
}

bool longNames(Stage &stage)
{
    return home(stage,
                today(record(R"("status":"MISSING_CHECK_OUT","checkInAt":"2026-03-02T12:42:10.000Z")") +
                          R"("canCheckIn":false,"canCheckOut":true)",
                      longOffice),
                distance(false, "123456.9", longOffice), u"Check Out"_s,
                "Wolfeschlegelsteinhausenbergerdorff the Third") &&
           QTest::qWaitFor([&] { return stage.server().count(u"/api/attendance/distance"_s) == 1; });
}

bool beforeTheFirstResponse(Stage &stage)
{
    stage.server().expect("GET", "/api/attendance/today").never();
    return stage.startAs("Ada Byron") && stage.screen().waitFor(u"Check In"_s) &&
           stage.server().waitForRequests(2);
}

bool locating(Stage &stage)
{
    stage.server().expect("GET", "/api/attendance/today").reply(200, mayCheckIn);
    stage.server().expect("GET", "/api/attendance/distance").never();
    return stage.startAs("Ada Byron") && stage.screen().waitFor(u"Locating"_s) &&
           stage.server().waitForRequests(3);
}

bool failed(Stage &stage)
{
    stage.server().expect("GET", "/api/attendance/today").reply(502, "<html>");
    stage.server().expect("GET", "/api/attendance/distance").reply(200, distance(true, "37.4"));
    return stage.startAs("Ada Byron") && stage.screen().waitFor(u"Request failed (502)."_s);
}

bool locationOff(Stage &stage)
{
    stage.server().expect("GET", "/api/attendance/today").reply(200, mayCheckIn);
    return stage.startAs("Ada Byron") &&
           stage.screen().waitFor(u"Location is off. Enable it in Settings \u203A Qor \u203A Location."_s) &&
           stage.screen().waitFor(u"Location permission is off. Enable it in Settings to mark attendance."_s);
}

bool punching(Stage &stage)
{
    stage.server().expect("POST", "/api/attendance/punch").never();
    return inside(stage) && stage.screen().click(u"Check In"_s) &&
           QTest::qWaitFor([&] { return stage.server().count(u"/api/attendance/punch"_s) == 1; });
}

bool punch(Stage &stage, int status, const QByteArray &reply, const QString &prefix)
{
    stage.server().expect("POST", "/api/attendance/punch").reply(status, reply);
    return inside(stage) && stage.screen().click(u"Check In"_s) &&
           !stage.screen().waitForPrefix(prefix).isEmpty();
}

bool successBanner(Stage &stage)
{
    return punch(stage, 201,
                 R"({"type":"IN","inside":true,"status":"LATE","lateMinutes":12,"office":"Head Office"})",
                 u"Checked in at "_s);
}

bool errorBanner(Stage &stage)
{
    return punch(
        stage, 422,
        R"({"error":"OUTSIDE_GEOFENCE","message":"You are 1,284 m from Head Office, which is more than its )"
        R"(radius of 150 m. Your position was accurate to 8 m."})",
        u"You are 1,284"_s);
}

} // namespace

QList<State> mainStates()
{
    const Device denied{AuthorizationStatus::Denied, false};
    return {{"home-inside", inside},
            {"home-outside", outside},
            {"home-checked-in", checkedIn},
            {"home-complete", dayComplete},
            {"home-long-names", longNames},
            {"home-before-the-first-answer", beforeTheFirstResponse},
            {"home-locating", locating},
            {"home-failed", failed},
            {"home-location-off", locationOff, denied},
            {"home-punching", punching},
            {"home-banner-success", successBanner},
            {"home-banner-error", errorBanner}};
}

} // namespace clockwell::test
