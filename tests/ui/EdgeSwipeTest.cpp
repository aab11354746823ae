#include "ComponentStage.h"
#include "NextFrame.h"
#include "StackDriver.h"
#include "ui/Theme.h"

#include <QPointer>
#include <QTemporaryDir>
#include <QTest>
#include <qpa/qwindowsysteminterface.h>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace clockwell::test {
namespace {

const QByteArray stackQml = StackDriver::qml(
    "x: -20; y: -20; width: 390; height: 400; "
    "initialItem: PrimaryButton { property int taps: 0; title: \"First\"; onClicked: ++taps }");

const QByteArray pageQml = R"(NavigationPage {
    id: page
    property int taps: 0
    property bool alertShown: false
    title: "Page"
    Flickable {
        objectName: "list"
        anchors.fill: parent
        contentHeight: 2000
        PrimaryButton { y: 40; width: 200; height: 60; title: "Edge"; onClicked: ++page.taps }
        QorField { y: 140; x: 30; width: 300; label: "Field" }
    }
    Alert { shown: page.alertShown; title: "Wait"; button: "OK" }
})";

class EdgeSwipeTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(stage.item());
        below = stack.currentItem();
        stack.push(file("Page.qml", pageQml));
        ASSERT_TRUE(stage.screen().waitUntilStill());
        page = stack.currentItem();
    }

    QUrl file(const char *name, const QByteArray &qml)
    {
        return writeScreen(m_files.filePath(QString::fromLatin1(name)), qml);
    }

    /// Slowly enough that letting go is no flick. The delay is that of the events' own clock.
    void drag(QPoint from, QPoint by, int delay = 60)
    {
        QTest::mousePress(&stage.window(), Qt::LeftButton, Qt::NoModifier, from);
        for (int step = 1; step <= 10; ++step)
            QTest::mouseMove(&stage.window(), from + by * step / 10, delay);
        QTest::mouseRelease(&stage.window(), Qt::LeftButton, Qt::NoModifier, from + by, delay);
    }
    void press(QPoint at) { QTest::touchEvent(&stage.window(), finger).press(0, at); }
    void move(QPoint at, int pause = 60)
    {
        QTest::qWait(pause);
        QTest::touchEvent(&stage.window(), finger).move(0, at);
        EXPECT_TRUE(nextFrame(stage.window()));
    }
    void release(QPoint at) { QTest::touchEvent(&stage.window(), finger).release(0, at); }
    void dragByFinger(QPoint from, QPoint by, int pause = 60)
    {
        press(from);
        for (int step = 1; step <= 10; ++step)
            move(from + by * step / 10, pause);
        QTest::qWait(pause);
        release(from + by);
    }
    bool wentBack()
    {
        return QTest::qWaitFor([this] { return stack.depth() == 1 && !stack.isMoving(); });
    }
    bool stays() { return stage.screen().waitUntilStill() && stack.depth() == 2 && page && page->x() == 0; }
    qreal scrolled() { return page->findChild<QQuickItem *>(u"list"_s)->property("contentY").toReal(); }

    QTemporaryDir m_files;
    ComponentStage stage{stackQml};
    StackDriver stack{stage.item()};
    QQuickItem *below = nullptr;
    QPointer<QQuickItem> page;
    QPointingDevice *finger = QTest::createTouchDevice();
};

const QPoint edge{8, 250};

TEST_F(EdgeSwipeTest, AFewPointsSpringBack)
{
    drag(edge, QPoint(120, 5));
    EXPECT_TRUE(stays());
    dragByFinger(edge, QPoint(120, 5));
    EXPECT_TRUE(stays());
    EXPECT_FALSE(stage.screen().shows(u"First"_s)); // the lower screen is hidden again
}

TEST_F(EdgeSwipeTest, BeyondHalfItGoesBackOnce)
{
    const QPointer<QQuickItem> leaving = page;
    drag(edge, QPoint(260, -20));
    EXPECT_TRUE(wentBack());
    EXPECT_TRUE(stage.screen().shows(u"First"_s));
    EXPECT_TRUE(QTest::qWaitFor([&] { return leaving.isNull(); }));
    EXPECT_EQ(stack.currentItem()->x(), 0);
}

TEST_F(EdgeSwipeTest, ByFingerToo)
{
    dragByFinger(edge, QPoint(260, -20));
    EXPECT_TRUE(wentBack());
}

TEST_F(EdgeSwipeTest, AFlickIsEnough)
{
    drag(edge, QPoint(180, 0), 10); // not yet half of the way
    EXPECT_TRUE(wentBack());
}

TEST_F(EdgeSwipeTest, AFlickBackToTheEdgeStays)
{
    QTest::mousePress(&stage.window(), Qt::LeftButton, Qt::NoModifier, edge);
    for (const int x : {150, 370, 340, 300, 260, 220}) // beyond half still
        QTest::mouseMove(&stage.window(), edge + QPoint(x, 0), 10);
    QTest::mouseRelease(&stage.window(), Qt::LeftButton, Qt::NoModifier, edge + QPoint(220, 0), 10);
    EXPECT_TRUE(stays());
}

TEST_F(EdgeSwipeTest, BothScreensFollowTheFinger)
{
    press(edge);
    move(edge + QPoint(40, 0));
    move(edge + QPoint(195, 0));
    EXPECT_EQ(page->x(), 195);
    EXPECT_TRUE(below->isVisible());
    EXPECT_NEAR(below->x(), -49, 1); // a quarter of what is left of the way
    EXPECT_TRUE(stack.isMoving());
    move(edge + QPoint(-50, 0));
    EXPECT_EQ(page->x(), 0);
    move(edge + QPoint(60, 0), 300);
    move(edge + QPoint(61, 0), 300);
    release(edge + QPoint(61, 0));
    EXPECT_TRUE(stays());
    EXPECT_FALSE(below->isVisible());
}

TEST_F(EdgeSwipeTest, GoesOnFromWhereItWasLetGo)
{
    press(edge);
    move(edge + QPoint(40, 0));
    move(edge + QPoint(300, 0), 400);
    move(edge + QPoint(301, 0), 400);
    const qreal before = page->x();
    release(edge + QPoint(301, 0));
    EXPECT_EQ(stack.depth(), 1);
    EXPECT_GE(page->x(), before);
    EXPECT_TRUE(wentBack());
}

TEST_F(EdgeSwipeTest, ADragFromFurtherInsideIsNone)
{
    drag(QPoint(40, 330), QPoint(300, 0));
    EXPECT_TRUE(stays());
    dragByFinger(QPoint(40, 330), QPoint(300, 0));
    EXPECT_TRUE(stays());
}

TEST_F(EdgeSwipeTest, ADragDownTheEdgeScrolls)
{
    dragByFinger(edge, QPoint(10, -150));
    EXPECT_TRUE(stays());
    EXPECT_GT(scrolled(), 50);
}

TEST_F(EdgeSwipeTest, AScrollThatTurnsSidewaysStaysAScroll)
{
    press(edge);
    for (const auto &at : {QPoint(8, 220), QPoint(10, 180), QPoint(120, 170), QPoint(330, 170)})
        move(at);
    EXPECT_EQ(page->x(), 0);
    release(QPoint(330, 170));
    EXPECT_TRUE(stays());
}

TEST_F(EdgeSwipeTest, ATapAtTheEdgeIsATap)
{
    QTest::mouseClick(&stage.window(), Qt::LeftButton, Qt::NoModifier, QPoint(10, 44 + 70));
    EXPECT_EQ(page->property("taps").toInt(), 1);
    QTest::mouseClick(&stage.window(), Qt::LeftButton, Qt::NoModifier, QPoint(12, 22)); // the bar's way back
    EXPECT_TRUE(wentBack());
}

TEST_F(EdgeSwipeTest, APressThatBecomesASwipePressesNothing)
{
    dragByFinger(QPoint(10, 44 + 70), QPoint(90, 0));
    EXPECT_TRUE(stays());
    EXPECT_EQ(page->property("taps").toInt(), 0);
}

TEST_F(EdgeSwipeTest, FromAnEmptyPlaceOfTheBar)
{
    dragByFinger(QPoint(2, 5), QPoint(280, 0));
    EXPECT_TRUE(wentBack());
}

TEST_F(EdgeSwipeTest, TheLowestScreenStays)
{
    stack.pop();
    ASSERT_TRUE(wentBack());
    drag(edge, QPoint(300, 0));
    dragByFinger(edge, QPoint(300, 0));
    EXPECT_EQ(stack.depth(), 1);
    EXPECT_EQ(stack.currentItem()->x(), 0);
    EXPECT_FALSE(stack.isMoving());
}

TEST_F(EdgeSwipeTest, AScreenWithoutAWayBackStays)
{
    stack.push(file("Dead.qml", "Rectangle { color: \"black\"; MouseArea { anchors.fill: parent } }"));
    ASSERT_TRUE(stage.screen().waitUntilStill());
    drag(edge, QPoint(300, 0));
    EXPECT_EQ(stack.depth(), 3);
    EXPECT_EQ(stack.currentItem()->x(), 0);
}

TEST_F(EdgeSwipeTest, NotWhileScreensChange)
{
    stack.push(file("Second.qml", pageQml));
    press(edge);
    move(edge + QPoint(40, 0), 5);
    move(edge + QPoint(300, 0), 5);
    release(edge + QPoint(300, 0));
    ASSERT_TRUE(stage.screen().waitUntilStill());
    EXPECT_EQ(stack.depth(), 3);
    EXPECT_EQ(stack.currentItem()->x(), 0);
}

TEST_F(EdgeSwipeTest, NotBelowAnAlert)
{
    page->setProperty("alertShown", true);
    ASSERT_TRUE(stage.screen().waitFor(u"OK"_s));
    ASSERT_TRUE(stage.screen().waitUntilStill());
    drag(edge, QPoint(300, 0));
    dragByFinger(edge, QPoint(300, 0));
    EXPECT_TRUE(stays());
}

TEST_F(EdgeSwipeTest, AnAlertThatOpensInTheMiddleKeepsTheScreen)
{
    press(edge);
    move(edge + QPoint(40, 0));
    move(edge + QPoint(150, 0));
    page->setProperty("alertShown", true);
    ASSERT_TRUE(stage.screen().waitFor(u"OK"_s));
    move(edge + QPoint(300, 0));
    release(edge + QPoint(300, 0));
    EXPECT_TRUE(stays());
    EXPECT_FALSE(stack.isMoving());
    page->setProperty("alertShown", false);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !stage.screen().shows(u"OK"_s); }));
    ASSERT_TRUE(stage.screen().waitUntilStill());
    dragByFinger(edge, QPoint(260, 0)); // and the next one is one again
    EXPECT_TRUE(wentBack());
}

TEST_F(EdgeSwipeTest, AReleaseThatNeverComesDoesNotLockTheScreen)
{
    press(edge);
    move(edge + QPoint(40, 0));
    move(edge + QPoint(300, 0));
    ASSERT_GT(page->x(), 200);
    stage.window().hide();
    stage.window().show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&stage.window()));
    QTest::mouseClick(&stage.window(), Qt::LeftButton, Qt::NoModifier, QPoint(100, 330));
    EXPECT_TRUE(stays());
    EXPECT_FALSE(stack.isMoving());
    ASSERT_TRUE(stage.screen().click(u"Edge"_s));
    EXPECT_EQ(page->property("taps").toInt(), 1);
    dragByFinger(edge, QPoint(260, 0));
    EXPECT_TRUE(wentBack());
}

TEST_F(EdgeSwipeTest, ASecondFingerEndsIt)
{
    press(edge);
    move(edge + QPoint(40, 0));
    move(edge + QPoint(250, 0));
    ASSERT_GT(page->x(), 200);
    QTest::touchEvent(&stage.window(), finger).stationary(0).press(1, QPoint(200, 330));
    EXPECT_TRUE(stays());
    QTest::touchEvent(&stage.window(), finger).release(0, edge + QPoint(250, 0)).release(1, QPoint(200, 330));
    EXPECT_TRUE(stays());
}

TEST_F(EdgeSwipeTest, ASecondFingerPressesNothing)
{
    press(edge);
    move(edge + QPoint(40, 0));
    move(edge + QPoint(60, 0));
    const QPoint button(68 + 60, 44 + 70);
    QTest::touchEvent(&stage.window(), finger).stationary(0).press(1, button);
    QTest::touchEvent(&stage.window(), finger).stationary(0).release(1, button);
    QTest::touchEvent(&stage.window(), finger).release(0, edge + QPoint(60, 0));
    EXPECT_TRUE(stays());
    EXPECT_EQ(page->property("taps").toInt(), 0);
}

TEST_F(EdgeSwipeTest, NothingIsPressedWhileItSpringsBack)
{
    drag(edge, QPoint(150, 0));
    ASSERT_TRUE(stack.isMoving());
    QTest::mouseClick(&stage.window(), Qt::LeftButton, Qt::NoModifier, QPoint(150, 44 + 70));
    EXPECT_TRUE(stays());
    EXPECT_EQ(page->property("taps").toInt(), 0);
}

TEST_F(EdgeSwipeTest, ASwipeThatIsTakenAwaySpringsBack)
{
    press(edge);
    move(edge + QPoint(40, 0));
    move(edge + QPoint(300, 0));
    ASSERT_GT(page->x(), 200);
    QWindowSystemInterface::handleTouchCancelEvent(&stage.window(), finger);
    EXPECT_TRUE(stays());
    dragByFinger(edge, QPoint(260, 0)); // and the next one is one again
    EXPECT_TRUE(wentBack());
}

TEST_F(EdgeSwipeTest, ADragThatGoesDownMoreThanAsideIsNone)
{
    stack.push(file("Plain.qml", "NavigationPage { title: \"Plain\" }"));
    ASSERT_TRUE(stage.screen().waitUntilStill());
    page = stack.currentItem();
    press(QPoint(8, 100));
    for (const auto &at : {QPoint(10, 130), QPoint(20, 180), QPoint(40, 240), QPoint(300, 250)}) {
        move(at);
        EXPECT_EQ(page->x(), 0);
    }
    release(QPoint(300, 250));
    EXPECT_TRUE(stage.screen().waitUntilStill());
    EXPECT_EQ(stack.depth(), 3);
}

TEST_F(EdgeSwipeTest, TheKeyboardStaysInTheScreenThatIsPulled)
{
    press({5, 200});
    for (int x = 20; x <= 120; x += 20)
        move({x, 200});
    for (int tabs = 0; tabs < 5; ++tabs) {
        stage.screen().key(Qt::Key_Tab);
        EXPECT_TRUE(page->hasActiveFocus()) << tabs; // it or what is in it
    }
    release({120, 200});
}

TEST_F(EdgeSwipeTest, EscapeInTheMiddleGoesBackOnce)
{
    press(edge);
    move(edge + QPoint(40, 0));
    move(edge + QPoint(100, 0));
    stage.screen().key(Qt::Key_Escape);
    move(edge + QPoint(200, 0));
    release(edge + QPoint(200, 0));
    EXPECT_TRUE(wentBack());
    EXPECT_EQ(stack.currentItem()->x(), 0);
}

TEST_F(EdgeSwipeTest, TakenAwayMeanwhileItLeavesTheOneBelow)
{
    stage.theme().setReducedMotion(true);
    press(edge);
    move(edge + QPoint(40, 0));
    move(edge + QPoint(150, 0));
    stack.pop();
    release(edge + QPoint(150, 0));
    EXPECT_TRUE(wentBack());
    EXPECT_TRUE(stage.screen().shows(u"First"_s));
    EXPECT_EQ(stack.currentItem()->x(), 0);
}

TEST_F(EdgeSwipeTest, AScreenPushedMeanwhileFindsEverythingInItsPlace)
{
    press(edge);
    move(edge + QPoint(40, 0));
    move(edge + QPoint(150, 0));
    stack.push(file("Third.qml", pageQml));
    move(edge + QPoint(300, 0));
    release(edge + QPoint(300, 0));
    ASSERT_TRUE(stage.screen().waitUntilStill());
    EXPECT_EQ(stack.depth(), 3);
    EXPECT_EQ(stack.currentItem()->x(), 0);
    EXPECT_FALSE(page->isVisible());
    stack.pop();
    ASSERT_TRUE(stage.screen().waitUntilStill());
    EXPECT_EQ(page->x(), 0);
}

TEST_F(EdgeSwipeTest, ReplacedMeanwhileItIsGone)
{
    const QPointer<QQuickItem> old = page;
    press(edge);
    move(edge + QPoint(40, 0));
    move(edge + QPoint(150, 0));
    stack.replace(file("Other.qml", pageQml), {}, true);
    move(edge + QPoint(300, 0));
    release(edge + QPoint(300, 0));
    ASSERT_TRUE(stage.screen().waitUntilStill());
    EXPECT_EQ(stack.depth(), 1);
    EXPECT_EQ(stack.currentItem()->x(), 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return old.isNull(); }));
}

TEST_F(EdgeSwipeTest, WithoutMotionItFollowsTheFingerStill)
{
    stage.theme().setReducedMotion(true);
    press(edge);
    move(edge + QPoint(40, 0));
    move(edge + QPoint(100, 0), 200);
    EXPECT_EQ(page->x(), 100);
    move(edge + QPoint(101, 0), 200);
    release(edge + QPoint(101, 0));
    EXPECT_EQ(page->x(), 0);
    dragByFinger(edge, QPoint(280, 0));
    EXPECT_EQ(stack.depth(), 1);
    EXPECT_FALSE(stack.isMoving());
}

} // namespace
} // namespace clockwell::test
