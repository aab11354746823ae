#include "State.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace clockwell::test {

namespace {

const char *const path = "/api/attendance/me";

QByteArray day(const QByteArray &date, const QByteArray &status, const QByteArray &rest = {})
{
    return R"({"id":")" + date + R"(","workDate":")" + date + R"(","status":")" + status + R"(")" + rest +
           "}";
}

QByteArray times(const QByteArray &date, const QByteArray &in, const QByteArray &out, int worked, int late)
{
    return R"(,"checkInAt":")" + date + "T" + in + R"(:00Z","checkOutAt":")" + date + "T" + out +
           R"(:00Z","workingMinutes":)" + QByteArray::number(worked) + R"(,"lateMinutes":)" +
           QByteArray::number(late);
}

const QByteArray few =
    "[" + day("2026-03-04", "LATE", R"(,"checkInAt":"2026-03-04T09:42:00Z","lateMinutes":12)") + "," +
    day("2026-03-03", "ON_TIME", times("2026-03-03", "09:04", "18:09", 545, 0)) + "," +
    day("2026-03-02", "HALF_DAY", times("2026-03-02", "09:37", "13:05", 208, 7)) + "]";

const QByteArray everyStatus =
    "[" + day("2026-03-13", "ON_TIME", times("2026-03-13", "09:04", "18:09", 545, 0)) + "," +
    day("2026-03-12", "LATE", times("2026-03-12", "10:42", "19:59", 557, 72)) + "," +
    day("2026-03-11", "HALF_DAY", times("2026-03-11", "09:00", "13:00", 240, 0)) + "," +
    day("2026-03-10", "ABSENT") + "," + day("2026-03-09", "ON_LEAVE") + "," +
    day("2026-03-06", "MISSING_CHECK_OUT", R"(,"checkInAt":"2026-03-06T09:50:00Z","lateMinutes":20)") + "," +
    day("2026-03-05", "MISSING_PUNCH") + "," + day("2026-03-04", "PENDING") + "," +
    day("next Thursday", "WORK_FROM_HOME") + "]";

const QByteArray longTexts =
    "[" + day("2026-09-30", "MISSING_CHECK_OUT", times("2026-09-30", "22:42", "23:59", 1439, 1439)) + "," +
    day("the last Wednesday of September in the year 2026", "WORKING_FROM_ANOTHER_OFFICE_OF_THE_GROUP",
        times("2026-09-23", "10:10", "22:10", 99999, 99999)) +
    "," + day("2026-09-16", "") + "]";

QByteArray many()
{
    QByteArrayList days;
    for (int number = 28; number >= 1; --number) {
        const QByteArray date = "2026-02-" + QByteArray::number(number).rightJustified(2, '0');
        const int late = number % 3 == 0 ? number : 0;
        days.append(day(date, late > 0 ? "LATE" : "ON_TIME", times(date, "09:31", "18:05", 514, late)));
    }
    return "[" + days.join(',') + "]";
}

/// Opens the tab. The response to the first load has to be scripted before.
bool open(Stage &stage)
{
    stage.server().expect("GET", "/api/attendance/today").anyNumber().reply(404, "{}");
    stage.server().expect("GET", "/api/attendance/distance").anyNumber().reply(404, "{}");
    return stage.startAs("Ada Byron") && stage.screen().click(u"History"_s, QAccessible::PageTab) &&
           QTest::qWaitFor([&] { return stage.server().count(QString::fromLatin1(path)) >= 1; });
}

bool showing(Stage &stage, const QByteArray &reply, const QString &firstRow)
{
    stage.server().expect("GET", path).reply(200, reply);
    return open(stage) && !stage.screen().waitForPrefix(firstRow).isEmpty();
}

bool empty(Stage &stage)
{
    stage.server().expect("GET", path).reply(200, "[]");
    return open(stage) && stage.screen().waitFor(u"No attendance records yet"_s);
}

bool loading(Stage &stage)
{
    stage.server().expect("GET", path).never();
    return open(stage);
}

bool refreshing(Stage &stage)
{
    if (!showing(stage, few, u"Wed, 4 Mar 2026"_s))
        return false;
    stage.server().expect("GET", path).never();
    stage.screen().key(Qt::Key_F5);
    return stage.screen().waitFor(u"Refreshing"_s);
}

/// Opens the tab with the device set to this locale, and restores the setting.
bool inLocale(Stage &stage, const char *locale)
{
    const QByteArray before = qgetenv("LC_ALL");
    qputenv("LC_ALL", locale);
    stage.server().expect("GET", path).reply(200, everyStatus);
    const bool reached = open(stage) && QTest::qWaitFor([&] {
                             return stage.screen().find(u"History"_s, QAccessible::List).has_value();
                         });
    QTest::qWait(300);
    qputenv("LC_ALL", before);
    return reached;
}

} // namespace

QList<State> historyStates()
{
    return {
        {"history-empty", empty},
        {"history-loading", loading},
        {"history-few", [](Stage &stage) { return showing(stage, few, u"Wed, 4 Mar 2026"_s); }},
        {"history-every-status",
         [](Stage &stage) { return showing(stage, everyStatus, u"Fri, 13 Mar 2026"_s); }},
        {"history-many", [](Stage &stage) { return showing(stage, many(), u"Sat, 28 Feb 2026"_s); }},
        {"history-refreshing", refreshing},
        {"history-long-texts", [](Stage &stage) { return showing(stage, longTexts, u"Wed, 30 Sep 2026"_s); }},
        {"history-in-thai", [](Stage &stage) { return inLocale(stage, "th_TH.UTF-8"); }},
        {"history-in-hindi", [](Stage &stage) { return inLocale(stage, "hi_IN.UTF-8"); }},
        {"history-in-arabic", [](Stage &stage) { return inLocale(stage, "ar_EG.UTF-8"); }},
        {"history-in-german", [](Stage &stage) { return inLocale(stage, "de_DE.UTF-8"); }}};
}

} // namespace clockwell::test
