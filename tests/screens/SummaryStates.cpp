#include "State.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace clockwell::test {

namespace {

const char *const path = "/api/attendance/me/summary";

bool open(Stage &stage)
{
    stage.server().expect("GET", "/api/attendance/today").anyNumber().reply(404, "{}");
    stage.server().expect("GET", "/api/attendance/distance").anyNumber().reply(404, "{}");
    return stage.startAs("Ada Byron") && stage.screen().click(u"Summary"_s, QAccessible::PageTab) &&
           QTest::qWaitFor([&] { return stage.server().count(QString::fromLatin1(path)) >= 1; });
}

bool showing(Stage &stage, const QByteArray &reply)
{
    stage.server().expect("GET", path).reply(200, reply);
    return open(stage) && !stage.screen().waitForPrefix(u"Present, "_s).isEmpty();
}

bool filled(Stage &stage)
{
    return showing(stage, R"({"month":"2026-03","presentDays":18,"lateDays":3,"totalLateMinutes":47,)"
                          R"("absentDays":1,"leaveDays":2,"halfDays":0,"totalWorkingMinutes":9160})");
}

/// With the device set to Persian.
bool inPersian(Stage &stage)
{
    const QByteArray before = qgetenv("LC_ALL");
    qputenv("LC_ALL", "fa_IR.UTF-8");
    const bool reached = filled(stage);
    qputenv("LC_ALL", before);
    return reached;
}

bool largeNumbers(Stage &stage)
{
    return showing(stage,
                   R"({"month":"2026-09","presentDays":1234567,"lateDays":31,"totalLateMinutes":14880,)"
                   R"("absentDays":31,"leaveDays":31,"halfDays":31,"totalWorkingMinutes":123456789})");
}

bool placeholder(Stage &stage)
{
    stage.server().expect("GET", path).never();
    return open(stage);
}

bool failed(Stage &stage)
{
    stage.server().expect("GET", path).reply(503, "{}");
    return open(stage);
}

bool refreshing(Stage &stage)
{
    if (!filled(stage))
        return false;
    stage.server().expect("GET", path).never();
    stage.screen().key(Qt::Key_F5);
    return stage.screen().waitFor(u"Refreshing"_s);
}

} // namespace

QList<State> summaryStates()
{
    return {{"summary-filled", filled},        {"summary-large-numbers", largeNumbers},
            {"summary-in-persian", inPersian}, {"summary-placeholder", placeholder},
            {"summary-failed", failed},        {"summary-refreshing", refreshing}};
}

} // namespace clockwell::test
