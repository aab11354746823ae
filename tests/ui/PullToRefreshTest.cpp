#include "ComponentStage.h"
#include "ui/Theme.h"

#include <QTest>
#include <QWheelEvent>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

#include <gtest/gtest.h>
#include <private/qguiapplication_p.h>

#include <cmath>
#include <numbers>

using namespace Qt::StringLiterals;

namespace clockwell::test {
namespace {

constexpr qreal threshold = 72; // a pull this long refreshes; points
constexpr qreal rest = 56;      // meanwhile the content is this far below its top
constexpr int side = 40;        // of the disc
const QRect discAtRest((350 - side) / 2, 8, side, side);

/// A page without anything that is drawn on it: what shows is the disc, also while it is above the page.
QByteArray scene(const QByteArray &flickable)
{
    return "Item { id: root; y: 60; width: 350; height: 360; property int triggers: 0; property bool "
           "answers: true; "
           "property bool busy: false; property bool loads: false; property real titleCenter: 0; " +
           flickable +
           "PullToRefresh { flickable: list; refreshing: root.busy; loading: root.loads; "
           "asideCenter: root.titleCenter; "
           "onTriggered: { root.triggers += 1; root.busy = root.answers } } }";
}
const QByteArray page =
    scene("Flickable { id: list; objectName: \"list\"; anchors.fill: parent; contentHeight: 2000; "
          "pixelAligned: true; flickableDirection: Flickable.VerticalFlick } ");
const QByteArray shortPage =
    scene("Flickable { id: list; objectName: \"list\"; anchors.fill: parent; contentHeight: 20; "
          "pixelAligned: true; flickableDirection: Flickable.VerticalFlick } ");
const QByteArray listView =
    scene("ListView { id: list; objectName: \"list\"; anchors.fill: parent; pixelAligned: true; model: 40; "
          "header: Item { width: 10; height: 60 } delegate: Item { width: 10; height: 50 } } ");

class PullToRefreshTest : public ::testing::TestWithParam<QByteArray>
{
protected:
    void open(const QByteArray &qml)
    {
        stage = std::make_unique<ComponentStage>(qml, QSize(390, 460));
        list = stage->part("list");
        top = contentY();
    }
    /// Where something is drawn; empty while nothing is.
    QRect disc()
    {
        const QRect area = stage->item()->mapRectToScene(stage->item()->boundingRect()).toRect();
        const QImage image = stage->shot();
        const QRgb background = stage->theme().background().rgb();
        QRect drawn;
        for (int y = 0; y <= area.bottom(); ++y)
            for (int x = area.left(); x <= area.right(); ++x)
                if (image.pixel(x, y) != background)
                    drawn |= QRect(QPoint(x, y) - area.topLeft(), QSize(1, 1));
        return drawn;
    }
    /// Its colour between the edge and the spokes.
    QColor discColor() { return stage->colorAt(discAtRest.center().x(), discAtRest.top() + 5); }
    bool isDiscGone()
    {
        return QTest::qWaitFor([&] { return disc().isEmpty(); });
    }
    bool turns(int limitMs = 1000)
    {
        const QImage before = stage->shot();
        return QTest::qWaitFor([&] { return stage->shot() != before; }, limitMs);
    }
    /// The direction in which the spokes are brightest, in eighths of a turn from 0 to 7; clockwise is
    /// upwards.
    int direction()
    {
        const QPointF origin = stage->item()->mapToScene(disc().center());
        const QImage image = stage->shot();
        QPointF bright;
        for (int y = -10; y < 10; ++y)
            for (int x = -10; x < 10; ++x)
                bright += QPointF(x + 0.5, y + 0.5) * qGray(image.pixel(origin.toPoint() + QPoint(x, y)));
        const qreal turn = std::atan2(bright.y(), bright.x()) / (2 * std::numbers::pi);
        return (static_cast<int>(std::round(turn * 8)) + 8) % 8;
    }
    qreal contentY() const { return list->property("contentY").toReal(); }
    qreal beyondTop() const { return list->property("originY").toReal() - contentY(); }
    int triggers() const { return stage->item()->property("triggers").toInt(); }
    void finish() { stage->item()->setProperty("busy", false); }
    bool restsAt(qreal beyond)
    {
        return QTest::qWaitFor([&] { return qFuzzyCompare(beyondTop() + 1, beyond + 1) && isStill(); });
    }
    bool isStill() const
    {
        return !list->property("moving").toBool() && !list->property("dragging").toBool();
    }
    /// By mouse, down by `distance` points, and let go unless told otherwise.
    void drag(int distance, bool letGo = true)
    {
        const QPoint from(200, 100);
        QTest::mousePress(&stage->window(), Qt::LeftButton, {}, from);
        for (int i = 1; i <= 10; ++i)
            QTest::mouseMove(&stage->window(), from + QPoint(0, distance * i / 10), 10);
        if (letGo)
            QTest::mouseRelease(&stage->window(), Qt::LeftButton, {}, from + QPoint(0, distance));
    }
    void touch(int distance)
    {
        static QPointingDevice *const finger = QTest::createTouchDevice();
        const QPoint from(200, 100);
        QTest::touchEvent(&stage->window(), finger).press(1, from);
        for (int i = 1; i <= 10; ++i) {
            QTest::qWait(10);
            QTest::touchEvent(&stage->window(), finger).move(1, from + QPoint(0, distance * i / 10));
        }
        QTest::touchEvent(&stage->window(), finger).release(1, from + QPoint(0, distance));
    }
    void wheel(int notches)
    {
        for (int i = 0; i < std::abs(notches); ++i)
            scroll({}, {0, notches > 0 ? 120 : -120}, Qt::NoScrollPhase);
    }
    void touchpad(int points, Qt::ScrollPhase phase) { scroll({0, points}, {0, points}, phase); }
    void scroll(QPoint points, QPoint angle, Qt::ScrollPhase phase)
    {
        const QPoint at(200, 200);
        QWheelEvent event(at, stage->window().mapToGlobal(at), points, angle, Qt::NoButton, Qt::NoModifier,
                          phase, false);
        QGuiApplication::sendEvent(&stage->window(), &event);
        QTest::qWait(15);
    }

    std::unique_ptr<ComponentStage> stage;
    QQuickItem *list = nullptr;
    qreal top = 0;
};

class PullToRefreshEverywhere : public PullToRefreshTest
{};

TEST_P(PullToRefreshEverywhere, ALongPullRefreshesOnceWhenItIsLetGo)
{
    open(GetParam());
    drag(250, false);
    EXPECT_EQ(triggers(), 0);
    EXPECT_GE(beyondTop(), threshold);
    QTest::mouseRelease(&stage->window(), Qt::LeftButton, {}, QPoint(200, 350));
    EXPECT_EQ(triggers(), 1);
    EXPECT_TRUE(restsAt(rest)) << beyondTop();
    EXPECT_EQ(disc(), discAtRest);
    EXPECT_EQ(discColor(), stage->theme().surface());
    finish();
    EXPECT_TRUE(restsAt(0)) << beyondTop();
    EXPECT_TRUE(isDiscGone());
    EXPECT_EQ(contentY(), top);
    EXPECT_EQ(list->property("topMargin").toReal(), 0);
    EXPECT_EQ(triggers(), 1);
}

TEST_P(PullToRefreshEverywhere, AShortPullDoesNothing)
{
    open(GetParam());
    drag(100, false);
    EXPECT_GT(beyondTop(), 10);
    EXPECT_LT(beyondTop(), threshold);
    QTest::mouseRelease(&stage->window(), Qt::LeftButton, {}, QPoint(200, 200));
    EXPECT_TRUE(restsAt(0)) << beyondTop();
    EXPECT_EQ(triggers(), 0);
    EXPECT_TRUE(isDiscGone());
}

TEST_P(PullToRefreshEverywhere, AFingerPulls)
{
    open(GetParam());
    touch(100);
    EXPECT_TRUE(restsAt(0));
    EXPECT_EQ(triggers(), 0);
    touch(250);
    EXPECT_EQ(triggers(), 1);
    EXPECT_TRUE(restsAt(rest)) << beyondTop();
}

TEST_P(PullToRefreshEverywhere, TheWheelPullsBeyondTheTop)
{
    open(GetParam());
    wheel(1);
    EXPECT_GT(beyondTop(), 0);
    EXPECT_TRUE(restsAt(0)) << beyondTop();
    EXPECT_EQ(triggers(), 0);
    wheel(5);
    EXPECT_EQ(triggers(), 0); // not let go yet
    EXPECT_TRUE(QTest::qWaitFor([&] { return triggers() == 1; }));
    EXPECT_TRUE(restsAt(rest)) << beyondTop();
    finish();
    EXPECT_TRUE(restsAt(0));
}

TEST_P(PullToRefreshEverywhere, ATouchpadPullsUntilItsFingersAreLifted)
{
    open(GetParam());
    touchpad(0, Qt::ScrollBegin);
    for (int i = 0; i < 10; ++i)
        touchpad(20, Qt::ScrollUpdate);
    EXPECT_GE(beyondTop(), threshold);
    EXPECT_EQ(triggers(), 0);
    touchpad(0, Qt::ScrollEnd);
    EXPECT_EQ(triggers(), 1);
    EXPECT_TRUE(restsAt(rest)) << beyondTop();
}

TEST_P(PullToRefreshEverywhere, KeysRefreshAndTheContentMovesBelow)
{
    open(GetParam());
    stage->screen().key(Qt::Key_F5);
    EXPECT_EQ(triggers(), 1);
    EXPECT_TRUE(restsAt(rest)) << beyondTop();
    finish();
    EXPECT_TRUE(restsAt(0)) << beyondTop();
    stage->screen().key(Qt::Key_R, Qt::ControlModifier);
    EXPECT_EQ(triggers(), 2);
}

TEST_P(PullToRefreshEverywhere, AnAnswerThatComesAtOnceLeavesTheContentAtItsTop)
{
    open(GetParam());
    drag(250);
    finish();
    EXPECT_TRUE(restsAt(0)) << beyondTop();
    EXPECT_FALSE(QTest::qWaitFor([&] { return beyondTop() != 0; }, 600));
    drag(250);
    EXPECT_EQ(triggers(), 2);
}

TEST_P(PullToRefreshEverywhere, AnAnswerToAKeyThatComesAtOnceLeavesTheContentAtItsTop)
{
    open(GetParam());
    stage->screen().key(Qt::Key_F5);
    EXPECT_EQ(triggers(), 1);
    finish();
    EXPECT_FALSE(QTest::qWaitFor([&] { return beyondTop() > 1; }, 600)) << beyondTop();
    EXPECT_TRUE(restsAt(0)) << beyondTop();
    EXPECT_EQ(list->property("topMargin").toReal(), 0);
    EXPECT_TRUE(isDiscGone());
}

TEST_P(PullToRefreshEverywhere, WithReducedMotionNothingSlides)
{
    open(GetParam());
    stage->theme().setReducedMotion(true);
    stage->screen().key(Qt::Key_F5);
    EXPECT_EQ(beyondTop(), rest);
    finish();
    EXPECT_EQ(beyondTop(), 0);
    drag(250);
    QCoreApplication::processEvents();
    EXPECT_TRUE(restsAt(rest));
    EXPECT_EQ(disc(), discAtRest);
    EXPECT_FALSE(turns(350));
    finish();
    EXPECT_EQ(beyondTop(), 0);
}

std::string sceneName(const ::testing::TestParamInfo<QByteArray> &scenery)
{
    return scenery.param == page ? "Page" : scenery.param == shortPage ? "ShortPage" : "ListView";
}

INSTANTIATE_TEST_SUITE_P(PullToRefresh, PullToRefreshEverywhere, ::testing::Values(page, shortPage, listView),
                         sceneName);

TEST_F(PullToRefreshTest, ASecondPullWhileRefreshingStartsNothing)
{
    open(page);
    drag(250);
    ASSERT_TRUE(restsAt(rest));
    drag(250);
    touch(250);
    wheel(6);
    stage->screen().key(Qt::Key_F5);
    stage->screen().press(u"Refreshing"_s);
    EXPECT_TRUE(restsAt(rest)) << beyondTop();
    EXPECT_EQ(triggers(), 1);
}

TEST_F(PullToRefreshTest, PullingBackBeforeLettingGoDoesNothing)
{
    open(page);
    drag(250, false);
    for (int y = 340; y >= 130; y -= 10)
        QTest::mouseMove(&stage->window(), QPoint(200, y), 10);
    QTest::mouseRelease(&stage->window(), Qt::LeftButton, {}, QPoint(200, 130));
    EXPECT_TRUE(QTest::qWaitFor([&] { return isStill(); }));
    EXPECT_EQ(triggers(), 0);
    EXPECT_EQ(list->property("topMargin").toReal(), 0);
}

TEST_F(PullToRefreshTest, TheContentResists)
{
    open(page);
    drag(200, false);
    EXPECT_LT(beyondTop(), 110);
    EXPECT_GT(beyondTop(), 60);
    QTest::mouseRelease(&stage->window(), Qt::LeftButton, {}, QPoint(200, 300));
}

TEST_F(PullToRefreshTest, TheDiscAppearsWithThePullAndItsSpokesTurnWithIt)
{
    open(page);
    QList<int> directions;
    int brightness = 0;
    QTest::mousePress(&stage->window(), Qt::LeftButton, {}, QPoint(200, 90));
    for (int y = 90; y < 360; y += 5) {
        QTest::mouseMove(&stage->window(), QPoint(200, y), 5);
        const QRect drawn = disc();
        if (drawn.isEmpty())
            continue;
        EXPECT_EQ(drawn.size(), discAtRest.size()); // in whole points, so that it stays sharp
        const int now = qGray(stage->colorAt(drawn.center().x(), drawn.top() + 5).rgb());
        EXPECT_GE(now, brightness);
        brightness = now;
        if (directions.isEmpty() || directions.last() != direction())
            directions.append(direction());
    }
    ASSERT_GE(directions.size(), 7); // the first is too faint
    for (int i = 1; i < directions.size(); ++i)
        EXPECT_EQ(directions[i], (directions[i - 1] + 1) % 8);
    EXPECT_EQ(disc(), discAtRest);
    EXPECT_EQ(discColor(), stage->theme().surface());
    EXPECT_FALSE(stage->areaOf(stage->theme().brand()).isEmpty()); // let go, it refreshes
    EXPECT_FALSE(turns(350));                                      // the hand turns it, not the clock
    QTest::mouseRelease(&stage->window(), Qt::LeftButton, {}, QPoint(200, 360));
    ASSERT_TRUE(restsAt(rest));
    EXPECT_TRUE(turns());
}

TEST_F(PullToRefreshTest, AScrolledContentStaysWhereItIsAndTheDiscShowsOverIt)
{
    open(page);
    list->setProperty("contentY", 500);
    stage->screen().key(Qt::Key_F5);
    EXPECT_EQ(triggers(), 1);
    EXPECT_EQ(disc(), discAtRest);
    EXPECT_FALSE(QTest::qWaitFor([&] { return contentY() != 500; }, 400));
    finish();
    EXPECT_FALSE(QTest::qWaitFor([&] { return contentY() != 500; }, 400));
    EXPECT_TRUE(isDiscGone());
    EXPECT_EQ(list->property("topMargin").toReal(), 0);
}

TEST_F(PullToRefreshTest, AWheelThatScrollsToTheTopDoesNotPullOn)
{
    open(page);
    list->setProperty("contentY", 60);
    wheel(12);
    EXPECT_FALSE(QTest::qWaitFor([&] { return triggers() > 0; }, 400));
    EXPECT_TRUE(restsAt(0)) << beyondTop();
}

TEST_F(PullToRefreshTest, WheelingBackDuringAPullRefreshesNothing)
{
    open(page);
    wheel(5);
    wheel(-5);
    EXPECT_TRUE(restsAt(0)) << beyondTop();
    EXPECT_FALSE(QTest::qWaitFor([&] { return triggers() > 0; }, 400));
}

TEST_F(PullToRefreshTest, DisabledOrHiddenItRefreshesNothing)
{
    open(page);
    stage->item()->setEnabled(false);
    drag(250);
    wheel(6);
    stage->screen().key(Qt::Key_F5);
    stage->screen().press(u"Refresh"_s);
    QTest::qWait(300);
    EXPECT_EQ(triggers(), 0);
    stage->item()->setEnabled(true);
    stage->item()->setVisible(false);
    stage->screen().key(Qt::Key_F5);
    EXPECT_FALSE(stage->screen().press(u"Refresh"_s));
    EXPECT_EQ(triggers(), 0);
}

TEST_F(PullToRefreshTest, AScreenThatDoesNotRefreshGetsItsContentBack)
{
    open(page);
    stage->item()->setProperty("answers", false);
    drag(250);
    EXPECT_EQ(triggers(), 1);
    EXPECT_TRUE(restsAt(0)) << beyondTop();
    wheel(6);
    EXPECT_TRUE(QTest::qWaitFor([&] { return triggers() == 2; }));
    EXPECT_TRUE(restsAt(0)) << beyondTop();
}

TEST_F(PullToRefreshTest, ALoadThatNobodyPulledForShowsTheDiscAndMovesNothing)
{
    open(page);
    stage->item()->setProperty("loads", true);
    const QRect aside(350 - 20 - side, 8, side, side);
    EXPECT_EQ(disc(), aside);
    EXPECT_FALSE(QTest::qWaitFor([&] { return beyondTop() != 0; }, 400));
    stage->item()->setProperty("titleCenter", 41);
    EXPECT_EQ(disc(), aside.translated(0, 13));
    EXPECT_TRUE(turns());
    stage->item()->setProperty("loads", false);
    EXPECT_TRUE(isDiscGone());
}

/// What screen readers read out wherever they are: the names of the alerts that appear.
QStringList announced;

void listen(QAccessibleEvent *event)
{
    auto *interface = event->type() == QAccessible::ObjectShow ? event->accessibleInterface() : nullptr;
    if (interface && interface->role() == QAccessible::AlertMessage)
        announced.append(interface->text(QAccessible::Name));
}

TEST_F(PullToRefreshTest, AssistiveTechnologyRefreshesAndIsToldSo)
{
    open(page);
    QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(true);
    const auto before = QAccessible::installUpdateHandler(listen);
    ASSERT_TRUE(stage->screen().find(u"Refresh"_s, QAccessible::Button))
        << stage->screen().dump().toStdString();
    ASSERT_TRUE(stage->screen().press(u"Refresh"_s));
    EXPECT_EQ(triggers(), 1);
    EXPECT_EQ(announced, QStringList(u"Refreshing"_s));
    EXPECT_TRUE(stage->screen().find(u"Refreshing"_s, QAccessible::AlertMessage))
        << stage->screen().dump().toStdString();
    EXPECT_FALSE(stage->screen().shows(u"Refresh"_s));
    finish();
    EXPECT_TRUE(stage->screen().find(u"Refresh"_s, QAccessible::Button));
    EXPECT_FALSE(stage->screen().shows(u"Refreshing"_s));
    EXPECT_EQ(announced.size(), 1);
    QAccessible::installUpdateHandler(before);
}

} // namespace
} // namespace clockwell::test
