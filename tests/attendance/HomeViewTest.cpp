#include "HomeServices.h"
#include "attendance/DateFormats.h"
#include "support/screen/QmlStage.h"
#include "ui/Theme.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace clockwell {
namespace {

using namespace test::replies;
using test::spinUntil;

class HomeViewTest : public ::testing::Test
{
protected:
    void open(const QByteArray &todayReply, const QByteArray &distanceReply, QSize size = QSize(390, 844),
              const QString &name = u"Ada Lovelace"_s)
    {
        services.expectToday(todayReply);
        services.expectDistance(distanceReply);
        openOnly(size, name);
        ASSERT_TRUE(services.settle(2));
    }
    void openOnly(QSize size = QSize(390, 844), const QString &name = u"Ada Lovelace"_s)
    {
        stage = std::make_unique<test::QmlStage>(u"Clockwell/Attendance/HomeView.qml"_s,
                                                 services.properties(name), size);
    }
    test::ScreenDriver &screen() { return stage->screen(); }
    bool showsAll(const QStringList &texts)
    {
        for (const QString &text : texts) {
            if (!screen().waitFor(text)) {
                ADD_FAILURE() << text.toStdString() << " is missing in\n" << screen().dump().toStdString();
                return false;
            }
        }
        return true;
    }
    int punches() const { return services.server.count(u"/api/attendance/punch"_s); }
    void drag(QPoint from, QPoint to)
    {
        QTest::mousePress(&stage->view(), Qt::LeftButton, {}, from);
        for (int i = 1; i <= 10; ++i)
            QTest::mouseMove(&stage->view(), from + (to - from) * i / 10, 10);
        QTest::mouseRelease(&stage->view(), Qt::LeftButton, {}, to);
    }

    test::HomeServices services;
    std::unique_ptr<test::QmlStage> stage;
};

TEST_F(HomeViewTest, ShowsTheDayBeforeTheCheckIn)
{
    open(beforeCheckIn, inside);
    EXPECT_TRUE(showsAll({u"OFFICE"_s, u"Head Office"_s, u"Hours 09:30–18:00 · within 150m"_s, u"TODAY"_s,
                          u"Check-in"_s, u"Check-out"_s, u"Worked"_s, u"—"_s, u"37m"_s, u"Inside geofence"_s,
                          u"Nearest: Head Office · radius 150m"_s, u"Refresh my location"_s, u"Check In"_s}));
    EXPECT_FALSE(screen().shows(u"Tap refresh"_s));
    EXPECT_FALSE(screen().shows(u"Attendance complete for today"_s));
    EXPECT_FALSE(screen().waitForPrefix(u"Good "_s).isEmpty());
}

TEST_F(HomeViewTest, ShowsTheDayAtWork)
{
    open(atWork, outside);
    EXPECT_TRUE(
        showsAll({u"LATE"_s, u"1240m"_s, u"Outside"_s, u"Nearest: — · radius 150m"_s, u"Check Out"_s}));
    EXPECT_FALSE(screen().shows(u"Check In"_s));
}

TEST_F(HomeViewTest, ShowsThatTheDayIsComplete)
{
    open(complete, inside);
    EXPECT_TRUE(showsAll({u"ON TIME"_s, u"8h 5m"_s, u"Attendance complete for today"_s}));
    EXPECT_FALSE(screen().shows(u"Check In"_s) || screen().shows(u"Check Out"_s));
}

TEST_F(HomeViewTest, ClosedDayOffersNoPunch)
{
    open(today("null", false, false, false), inside);
    EXPECT_TRUE(showsAll({u"Attendance complete for today"_s}));
}

TEST_F(HomeViewTest, OffersTheCheckInBeforeTheFirstResponse)
{
    services.server.expect("GET", "/api/attendance/today").never();
    openOnly();
    EXPECT_TRUE(showsAll({u"—"_s, u"Tap refresh"_s, u"Check In"_s}));
    EXPECT_TRUE(screen().isEnabled(u"Check In"_s));
    EXPECT_TRUE(spinUntil([&] { return services.server.requests().size() == 1; }));
}

TEST_F(HomeViewTest, NothingMovesWhenTheFirstResponseArrives)
{
    services.server.expect("GET", "/api/attendance/today").after(1s).reply(200, atWork);
    services.expectDistance(inside);
    openOnly();
    const QStringList fixed{u"OFFICE"_s, u"TODAY"_s, u"Check-in"_s, u"Refresh my location"_s};
    QList<QRect> before;
    for (const QString &name : fixed)
        before.append(screen().find(name)->rect);
    ASSERT_TRUE(screen().shows(u"Check In"_s));
    const QRect button = screen().find(u"Check In"_s)->rect;
    ASSERT_TRUE(services.settle(2));
    ASSERT_TRUE(showsAll({u"Check Out"_s, u"37m"_s}));
    for (qsizetype i = 0; i < fixed.size(); ++i)
        EXPECT_EQ(screen().find(fixed.at(i))->rect, before.at(i)) << fixed.at(i).toStdString();
    EXPECT_EQ(screen().find(u"Check Out"_s)->rect, button);
}

TEST_F(HomeViewTest, PunchIsSentAndItsResultShown)
{
    open(beforeCheckIn, inside);
    services.server.expect("POST", "/api/attendance/punch").reply(200, checkedIn);
    services.expectToday(atWork);
    services.expectDistance(inside);
    ASSERT_TRUE(screen().click(u"Check In"_s, QAccessible::Button));
    EXPECT_TRUE(showsAll({u"Checked in at Head Office · LATE · 12m late"_s, u"Check Out"_s}));
    ASSERT_TRUE(services.settle(5));
    EXPECT_EQ(punches(), 1);
}

TEST_F(HomeViewTest, PunchWorksForAssistiveTechnologyAndTheKeyboard)
{
    open(beforeCheckIn, inside);
    services.server.expect("POST", "/api/attendance/punch")
        .times(2)
        .reply(403, R"({"message":"You are outside"})");
    ASSERT_TRUE(screen().press(u"Check In"_s));
    ASSERT_TRUE(services.settle(3));
    EXPECT_TRUE(showsAll({u"You are outside"_s, u"Close"_s}));
    for (int i = 0; i < 4 && punches() < 2; ++i) {
        screen().key(Qt::Key_Tab);
        const auto button = screen().find(u"Check In"_s, QAccessible::Button);
        if (button && button->state.focused)
            screen().key(Qt::Key_Space);
        spinUntil([&] { return punches() == 2; }, 200ms);
    }
    ASSERT_TRUE(services.settle(4));
    EXPECT_EQ(punches(), 2);
}

TEST_F(HomeViewTest, SixTapsBeforeTheAnswerSendOnePunch)
{
    open(beforeCheckIn, inside);
    services.server.expect("POST", "/api/attendance/punch").after(2500ms).reply(200, checkedIn);
    services.expectToday(atWork);
    services.expectDistance(inside);
    const QPoint middle = screen().find(u"Check In"_s)->rect.center();
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 6; ++i) {
        QTest::mouseClick(&stage->view(), Qt::LeftButton, {}, middle);
        QTest::qWait(50);
    }
    ASSERT_LT(clock.elapsed(), 2500);
    EXPECT_FALSE(screen().isEnabled(u"Check In"_s));
    ASSERT_TRUE(services.settle(5));
    EXPECT_EQ(punches(), 1);
    EXPECT_EQ(services.server.requests().size(), 5);
}

TEST_F(HomeViewTest, RefreshLocationShowsASpinnerAndStaysEnabled)
{
    open(beforeCheckIn, inside);
    services.source->immediate.reset();
    services.expectDistance(outside);
    ASSERT_TRUE(screen().click(u"Refresh my location"_s, QAccessible::Button));
    EXPECT_TRUE(services.store->checkingDistance());
    EXPECT_TRUE(screen().isEnabled(u"Refresh my location"_s));
    EXPECT_TRUE(screen().shows(u"37m"_s)); // the last distance stays until the next response
    services.source->deliver({Fix{1, 2, 3}});
    EXPECT_TRUE(showsAll({u"1240m"_s}));
    EXPECT_TRUE(services.settle(3));
}

TEST_F(HomeViewTest, DateIsUpdatedWithThePositionABannerAndAFailedLoad)
{
    const QByteArray before = qgetenv("TZ");
    // Simulates the next day: the two zones always have different dates, and the device's zone is read each
    // time that the date is formatted.
    int days = 0;
    const auto advanceDay = [&] { qputenv("TZ", days++ % 2 == 0 ? "Etc/GMT+12" : "Etc/GMT-14"); };
    const auto date = [] { return DateFormats().longDate(DateFormats::systemNow()); };
    advanceDay();
    open(beforeCheckIn, inside);
    EXPECT_TRUE(showsAll({date()}));
    advanceDay();
    services.expectDistance(inside);
    ASSERT_TRUE(screen().click(u"Refresh my location"_s, QAccessible::Button));
    EXPECT_TRUE(showsAll({date()}));
    ASSERT_TRUE(services.settle(3));
    advanceDay();
    services.store->setBanner(Banner{.text = u"Outside"_s});
    EXPECT_TRUE(showsAll({date()}));
    advanceDay();
    services.server.expect("GET", "/api/attendance/today").reply(500);
    screen().key(Qt::Key_F5);
    EXPECT_TRUE(showsAll({date()}));
    ASSERT_TRUE(services.settle(4));
    before.isNull() ? qunsetenv("TZ") : qputenv("TZ", before);
}

TEST_F(HomeViewTest, ShowsThatItIsLocating)
{
    services.source->immediate.reset();
    services.expectToday(beforeCheckIn);
    openOnly();
    EXPECT_TRUE(showsAll({u"Locating"_s}));
    services.source->fail(LocationSource::Failure::Other);
    EXPECT_TRUE(showsAll({u"Tap refresh"_s, u"Location is unavailable right now."_s}));
}

TEST_F(HomeViewTest, ShowsThatLocationIsOff)
{
    services.source->answer(AuthorizationStatus::Denied);
    services.expectToday(beforeCheckIn);
    openOnly();
    EXPECT_TRUE(showsAll({u"Location is off. Enable it in Settings › Qor › Location."_s,
                          u"Location permission is off. Enable it in Settings to mark attendance."_s}));
    EXPECT_TRUE(services.settle(1));
}

TEST_F(HomeViewTest, EachReturnToTheTabReloads)
{
    open(beforeCheckIn, inside);
    stage->root()->setVisible(false);
    services.expectToday(atWork);
    services.expectDistance(outside);
    stage->root()->setVisible(true);
    EXPECT_TRUE(services.settle(4));
    EXPECT_TRUE(showsAll({u"Check Out"_s, u"1240m"_s}));
}

TEST_F(HomeViewTest, KeysRefreshOnlyTheDay)
{
    open(beforeCheckIn, inside);
    services.expectToday(atWork);
    screen().key(Qt::Key_F5);
    EXPECT_TRUE(showsAll({u"Check Out"_s}));
    services.expectToday(complete);
    screen().key(Qt::Key_R, Qt::ControlModifier);
    EXPECT_TRUE(showsAll({u"Attendance complete for today"_s}));
    EXPECT_EQ(services.server.requests().size(), 4);
}

TEST_F(HomeViewTest, PullingFarEnoughRefreshesOnlyTheDay)
{
    open(beforeCheckIn, inside);
    drag({195, 200}, {195, 260}); // the resistance halves it, so not far enough
    QTest::qWait(100);
    EXPECT_EQ(services.server.requests().size(), 2);
    services.expectToday(atWork);
    drag({195, 200}, {195, 600});
    EXPECT_TRUE(showsAll({u"Check Out"_s}));
    EXPECT_TRUE(services.settle(3));
    EXPECT_EQ(services.server.requests().size(), 3);
}

TEST_F(HomeViewTest, DestroyingTheScreenDuringARequestIsHarmless)
{
    services.server.expect("GET", "/api/attendance/today").after(1s).reply(200, beforeCheckIn);
    openOnly();
    ASSERT_TRUE(services.server.waitForRequests(1));
    stage.reset();
    EXPECT_TRUE(services.settle(1));
    EXPECT_EQ(services.source->locationRequests, 0);
}

/// The visible text items below `item`.
QList<const QQuickItem *> textsBelow(const QQuickItem *item)
{
    QList<const QQuickItem *> found;
    QList<const QQuickItem *> items{item};
    while (!items.isEmpty()) {
        const auto *next = items.takeFirst();
        items.append({next->childItems().cbegin(), next->childItems().cend()});
        if (next->isVisible() && next->inherits("QQuickText") && !next->property("text").toString().isEmpty())
            found.append(next);
    }
    return found;
}

class HomeViewInLocale : public HomeViewTest
{
protected:
    void openIn(const QByteArray &locale, QSize size)
    {
        const QByteArray before = qgetenv("LC_ALL");
        qputenv("LC_ALL", locale);
        open(atWork, inside, size);
        qputenv("LC_ALL", before);
        QTest::qWait(50);
    }
};

TEST_F(HomeViewInLocale, RightToLeftDateIsAlignedWithTheGreeting)
{
    openIn("ar_EG.UTF-8", {390, 844});
    int rightToLeft = 0;
    for (const auto *text : textsBelow(stage->view().rootObject())) {
        if (text->property("text").toString().isRightToLeft() && text->width() > text->implicitWidth()) {
            ++rightToLeft;
            EXPECT_EQ(text->property("effectiveHorizontalAlignment").toInt(), Qt::AlignLeft)
                << text->property("text").toString().toStdString();
        }
    }
    EXPECT_GT(rightToLeft, 0);
}

TEST_F(HomeViewInLocale, LongTimesDoNotOverlap)
{
    for (const QSize size : {QSize(320, 568), QSize(390, 844), QSize(768, 1024)}) {
        openIn("th_TH.UTF-8", size);
        const auto elements = screen().elements();
        QList<QRect> values;
        for (const auto &element : elements)
            if (element.name == u"—" || element.name.contains(u"เที่ยง") || element.name.startsWith(u"Check-"))
                values.append(element.rect);
        ASSERT_GE(values.size(), 4) << screen().dump().toStdString();
        for (qsizetype i = 0; i < values.size(); ++i) {
            EXPECT_LE(values[i].right(), size.width() - 20 - 18);
            for (qsizetype j = 0; j < i; ++j)
                EXPECT_FALSE(values[i].intersects(values[j]))
                    << i << ' ' << j << screen().dump().toStdString();
        }
        stage.reset();
    }
}

TEST_F(HomeViewTest, FourDigitTimesAreSideBySideOnTheSmallestScreenToo)
{
    QByteArray late = complete;
    late.replace("T09:04", "T10:48").replace("T17:09", "T22:48");
    open(late, inside, {320, 568});
    ASSERT_TRUE(screen().waitFor(u"8h 5m"_s));
    stage->view().grabWindow();
    const auto in = screen().find(u"Check-in"_s, QAccessible::StaticText);
    const auto out = screen().find(u"Check-out"_s, QAccessible::StaticText);
    ASSERT_TRUE(in && out) << screen().dump().toStdString();
    EXPECT_EQ(in->rect.top(), out->rect.top());
    EXPECT_LT(in->rect.left(), out->rect.left());
}

TEST_F(HomeViewTest, SymbolOfALargeTextIsBesideIt)
{
    open(beforeCheckIn, inside, {320, 568});
    auto *theme =
        stage->view().engine()->singletonInstance<Theme *>(qmlTypeId("Clockwell.Ui", 1, 0, "Theme"));
    ASSERT_NE(theme, nullptr);
    theme->setTextScale(2);
    QTest::qWait(50);
    const auto texts = textsBelow(stage->view().rootObject());
    const auto label = std::find_if(texts.cbegin(), texts.cend(), [](const QQuickItem *text) {
        return text->property("text").toString() == u"Refresh my location";
    });
    ASSERT_NE(label, texts.cend());
    const QQuickItem *symbol = nullptr;
    QList<QQuickItem *> beside = (*label)->parentItem()->childItems();
    while (!beside.isEmpty() && !symbol) {
        const auto *item = beside.takeFirst();
        beside.append(item->childItems());
        if (item->property("name").toString() == u"location.circle")
            symbol = item;
    }
    ASSERT_NE(symbol, nullptr);
    const QRectF symbolRect = symbol->mapRectToScene(symbol->boundingRect());
    const QRectF textRect = (*label)->mapRectToScene((*label)->boundingRect());
    constexpr int padding = 20 + 18; // of the page and of the card
    EXPECT_LE(symbolRect.right() + 8, textRect.left());
    EXPECT_GE(symbolRect.left(), padding);
    EXPECT_LE(textRect.right(), 320 - padding);
}

struct Format
{
    QSize size;
    double textScale;
};

class HomeViewFormats : public HomeViewTest, public ::testing::WithParamInterface<Format>
{};

TEST_P(HomeViewFormats, AllContentCanBeReached)
{
    const QString office =
        u"Directorate of Wide Area Infrastructure Services, Northern Regional Headquarters"_s;
    services.expectToday(today(R"({"id":"r","workDate":"2025-03-03","status":"MISSING_CHECK_OUT",)"
                               R"("checkInAt":"2025-03-03T12:42:00Z","workingMinutes":1439})",
                               false, true, true, office.toUtf8()));
    services.expectDistance(outside);
    openOnly(GetParam().size, u"Wolfeschlegelsteinhausenbergerdorff Hubert"_s);
    auto *theme =
        stage->view().engine()->singletonInstance<Theme *>(qmlTypeId("Clockwell.Ui", 1, 0, "Theme"));
    ASSERT_NE(theme, nullptr);
    theme->setTextScale(GetParam().textScale);
    ASSERT_TRUE(services.settle(2));
    ASSERT_TRUE(showsAll({u"Check Out"_s}));
    QTest::qWait(50);

    const QRect window(QPoint(), GetParam().size);
    const QRect button = screen().find(u"Check Out"_s)->rect;
    EXPECT_TRUE(window.contains(button));
    EXPECT_GE(button.height(), 44);
    EXPECT_LE(window.bottom() - button.bottom(), 24);
    // Scrolls through the content: everything becomes visible, and nothing extends beyond the sides.
    QSet<QString> seen;
    for (int page = 0; page < 12; ++page) {
        for (const auto &element : screen().elements()) {
            if (element.name.isEmpty())
                continue;
            seen.insert(element.name);
            EXPECT_GE(element.rect.left(), 0) << element.name.toStdString();
            EXPECT_LE(element.rect.right(), window.right()) << element.name.toStdString();
        }
        const int bottom = button.top() - 30;
        drag({window.center().x(), bottom}, {window.center().x(), bottom / 3});
        QTest::qWait(60);
    }
    for (const QString &text :
         {office, u"MISSING CHECK OUT"_s, u"Check-in"_s, u"Check-out"_s, u"Worked"_s, u"23h 59m"_s,
          u"1240m"_s, u"Outside"_s, u"Nearest: — · radius 150m"_s, u"Refresh my location"_s})
        EXPECT_TRUE(seen.contains(text)) << text.toStdString();
}

INSTANTIATE_TEST_SUITE_P(HomeView, HomeViewFormats,
                         ::testing::Values(Format{{320, 568}, 1}, Format{{390, 844}, 1},
                                           Format{{768, 1024}, 1}, Format{{320, 568}, 2},
                                           Format{{390, 844}, 2}, Format{{768, 1024}, 2}));

} // namespace
} // namespace clockwell
