#include "ComponentStage.h"
#include "ui/PullToRefreshControl.h"
#include "ui/Theme.h"

#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace clockwell::test {
namespace {

constexpr qreal rest = 56;

/// A page of 2,000 points; the list in its place where asked for.
QByteArray scene(const QByteArray &flickable)
{
    return "Item { id: root; width: 350; height: 360; property int triggers: 0; "
           "property bool answers: true; property bool busy: false; " +
           flickable +
           "PullToRefresh { id: pull; objectName: \"pull\"; flickable: list; refreshing: root.busy; "
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
        stage = std::make_unique<ComponentStage>(qml);
        list = stage->part("list");
        disc = stage->part("disc");
        pull = qobject_cast<PullToRefreshControl *>(stage->part("pull"));
        ASSERT_NE(pull, nullptr);
        top = contentY();
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
    QQuickItem *disc = nullptr;
    PullToRefreshControl *pull = nullptr;
    qreal top = 0;
};

class PullToRefreshEverywhere : public PullToRefreshTest
{};

TEST_P(PullToRefreshEverywhere, ALongPullRefreshesOnceWhenItIsLetGo)
{
    open(GetParam());
    drag(250, false);
    EXPECT_EQ(triggers(), 0);
    EXPECT_GE(beyondTop(), PullToRefreshControl::threshold);
    QTest::mouseRelease(&stage->window(), Qt::LeftButton, {}, QPoint(200, 350));
    EXPECT_EQ(triggers(), 1);
    EXPECT_TRUE(restsAt(rest)) << beyondTop();
    EXPECT_EQ(disc->y(), 0);
    EXPECT_EQ(disc->opacity(), 1);
    finish();
    EXPECT_TRUE(restsAt(0)) << beyondTop();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !disc->isVisible(); }));
    EXPECT_EQ(contentY(), top);
    EXPECT_EQ(list->property("topMargin").toReal(), 0);
    EXPECT_EQ(triggers(), 1);
}

TEST_P(PullToRefreshEverywhere, AShortPullDoesNothing)
{
    open(GetParam());
    drag(100, false);
    EXPECT_GT(beyondTop(), 10);
    EXPECT_LT(beyondTop(), PullToRefreshControl::threshold);
    QTest::mouseRelease(&stage->window(), Qt::LeftButton, {}, QPoint(200, 200));
    EXPECT_TRUE(restsAt(0)) << beyondTop();
    EXPECT_EQ(triggers(), 0);
    EXPECT_FALSE(disc->isVisible());
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
    touchpad(20, Qt::ScrollBegin);
    for (int i = 0; i < 10; ++i)
        touchpad(20, Qt::ScrollUpdate);
    EXPECT_GE(beyondTop(), PullToRefreshControl::threshold);
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
    EXPECT_FALSE(disc->isVisible());
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
    EXPECT_TRUE(stage->part("spinner")->property("still").toBool());
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
    EXPECT_TRUE(stage->screen().press(u"Refreshing"_s));
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

TEST_F(PullToRefreshTest, TheSpinnerTurnsAndAppearsWithThePull)
{
    open(page);
    auto *spinner = stage->part("spinner");
    QList<qreal> turns;
    qreal opacity = 0;
    QTest::mousePress(&stage->window(), Qt::LeftButton, {}, QPoint(200, 30));
    for (int y = 30; y < 300; y += 5) {
        QTest::mouseMove(&stage->window(), QPoint(200, y), 5);
        EXPECT_GE(disc->opacity(), opacity);
        opacity = disc->opacity();
        EXPECT_EQ(disc->y(), std::round(disc->y()));
        if (turns.isEmpty() || turns.last() != spinner->rotation())
            turns.append(spinner->rotation());
    }
    EXPECT_EQ(turns, QList<qreal>({0, 45, 90, 135, 180, 225, 270, 315, 360}));
    EXPECT_EQ(opacity, 1);
    EXPECT_EQ(spinner->property("color").value<QColor>(), stage->theme().brand());
    EXPECT_EQ(spinner->property("step").toInt(), 0); // the hand turns it, not the clock
    QTest::mouseRelease(&stage->window(), Qt::LeftButton, {}, QPoint(200, 300));
    EXPECT_TRUE(QTest::qWaitFor([&] { return spinner->property("step").toInt() > 0; }));
}

TEST_F(PullToRefreshTest, AScrolledContentStaysWhereItIsAndTheDiscShowsOverIt)
{
    open(page);
    list->setProperty("contentY", 500);
    stage->screen().key(Qt::Key_F5);
    EXPECT_EQ(triggers(), 1);
    EXPECT_TRUE(disc->isVisible());
    EXPECT_FALSE(QTest::qWaitFor([&] { return contentY() != 500; }, 400));
    finish();
    EXPECT_FALSE(QTest::qWaitFor([&] { return contentY() != 500; }, 400));
    EXPECT_FALSE(disc->isVisible());
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
    pull->refresh();
    QTest::qWait(300);
    EXPECT_EQ(triggers(), 0);
    stage->item()->setEnabled(true);
    stage->item()->setVisible(false);
    stage->screen().key(Qt::Key_F5);
    pull->refresh();
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
    pull->setProperty("loading", true);
    EXPECT_TRUE(disc->isVisible());
    EXPECT_EQ(disc->y(), 0);
    EXPECT_FALSE(QTest::qWaitFor([&] { return beyondTop() != 0; }, 400));
    EXPECT_EQ(disc->mapToItem(list, QPointF()), QPointF(350 - 20 - 40, 8));
    pull->setProperty("asideCenter", 41);
    EXPECT_EQ(disc->mapToItem(list, QPointF()), QPointF(350 - 20 - 40, 21));
    pull->setProperty("loading", false);
    EXPECT_FALSE(disc->isVisible());
}

TEST_F(PullToRefreshTest, AssistiveTechnologyRefreshesAndIsToldSo)
{
    open(page);
    const auto idle = stage->screen().find(u"Refresh"_s, QAccessible::Button);
    ASSERT_TRUE(idle) << stage->screen().dump().toStdString();
    EXPECT_FALSE(idle->state.busy);
    ASSERT_TRUE(stage->screen().press(u"Refresh"_s));
    EXPECT_EQ(triggers(), 1);
    const auto busy = stage->screen().find(u"Refreshing"_s, QAccessible::AlertMessage);
    ASSERT_TRUE(busy) << stage->screen().dump().toStdString();
    EXPECT_TRUE(busy->state.busy);
    EXPECT_FALSE(stage->screen().shows(u"Refresh"_s));
    finish();
    EXPECT_TRUE(stage->screen().find(u"Refresh"_s, QAccessible::Button));
    EXPECT_FALSE(stage->screen().find(u"Refresh"_s)->state.busy);
}

} // namespace
} // namespace clockwell::test
