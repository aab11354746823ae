#include "HomeStage.h"

#include "support/screen/QmlStage.h"
#include "ui/Theme.h"

#include <QGuiApplication>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace clockwell {
namespace {

using namespace test::replies;

struct State
{
    QString name;
    QByteArray today = {};    // empty: no answer yet
    QByteArray distance = {}; // empty: none
    std::optional<Banner::Kind> banner = {};
    AuthorizationStatus permission = AuthorizationStatus::AuthorizedWhenInUse;
    QSize size = {390, 844};
    double textScale = 1;
    QString fullName = u"Ada Lovelace"_s;
};

QList<State> states()
{
    const QByteArray longDay = today(
        R"({"id":"r","workDate":"2025-03-03","status":"MISSING_CHECK_OUT","checkInAt":"2025-03-03T12:42:00Z",)"
        R"("workingMinutes":1439})",
        false, true, true,
        "Directorate of Wide Area Infrastructure Services, Northern Regional Headquarters");
    const QString longName = u"Wolfeschlegelsteinhausenbergerdorff Hubert"_s;
    QList<State> list{
        {.name = u"not-in"_s, .today = beforeCheckIn, .distance = inside},
        {.name = u"at-work"_s, .today = atWork, .distance = outside, .banner = Banner::Kind::Success},
        {.name = u"complete"_s, .today = complete, .distance = inside, .banner = Banner::Kind::Info},
        {.name = u"closed"_s, .today = today("null", false, false, false), .distance = inside},
        {.name = u"waiting"_s},
        {.name = u"failed"_s, .today = "-", .banner = Banner::Kind::Error},
        {.name = u"denied"_s, .today = beforeCheckIn, .permission = AuthorizationStatus::Denied},
    };
    for (const QSize size : {QSize(320, 568), QSize(390, 844), QSize(768, 1024)}) {
        for (const double scale : {1.0, 2.0})
            list.append({.name = u"long-%1-%2"_s.arg(size.width()).arg(scale),
                         .today = longDay,
                         .distance = outside,
                         .banner = scale > 1 ? std::optional(Banner::Kind::Error) : std::nullopt,
                         .size = size,
                         .textScale = scale,
                         .fullName = longName});
        list.append(
            {.name = u"normal-%1"_s.arg(size.width()), .today = atWork, .distance = inside, .size = size});
    }
    return list;
}

void render(const State &state, const QString &folder)
{
    test::HomeServices services;
    services.source->answer(state.permission);
    if (state.today.isEmpty())
        services.server.expect("GET", "/api/attendance/today").anyNumber().never();
    else if (state.today == "-")
        services.server.expect("GET", "/api/attendance/today").reply(500);
    else
        services.expectToday(state.today);
    if (state.distance.isEmpty())
        services.server.expect("GET", "/api/attendance/distance").anyNumber().never();
    else
        services.expectDistance(state.distance);
    test::QmlStage stage(u"Clockwell/Attendance/HomeView.qml"_s, services.properties(state.fullName),
                         state.size);
    stage.view()
        .engine()
        ->singletonInstance<Theme *>(qmlTypeId("Clockwell.Ui", 1, 0, "Theme"))
        ->setTextScale(state.textScale);
    test::spinUntil([&] { return services.isIdle(); }, std::chrono::milliseconds(700));
    if (state.banner && !services.store->banner()) {
        const QString text =
            *state.banner == Banner::Kind::Success
                ? u"Checked in at Head Office · LATE · 12m late"_s
                : u"You are 1240m away from Head Office. Move inside the geofence and try again."_s;
        services.store->setBanner(Banner{.text = text, .kind = *state.banner});
    }
    QTest::qWait(450);
    if (!stage->savePng(folder + u'/' + state.name + u".png"_s))
        std::fprintf(stderr, "%s could not be written\n", qPrintable(state.name));
}

} // namespace
} // namespace clockwell

int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv); // the server reports through it
    const QGuiApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: clockwell_home_gallery FOLDER\n", stderr);
        return 2;
    }
    for (const auto &state : clockwell::states())
        clockwell::render(state, QString::fromLocal8Bit(argv[1]));
    return 0;
}
