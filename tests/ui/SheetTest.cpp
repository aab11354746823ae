#include "ComponentStage.h"
#include "NextFrame.h"
#include "ui/Theme.h"

#include <QPointer>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace clockwell::test {
namespace {

const QByteArray page = R"(Item {
    property bool open: false
    property bool keptOpen: false
    property int rejections: 0
    property int built: 0
    property int destroyed: 0
    id: page
    width: 350; height: 660
    Sheet {
        title: "A form"
        shown: page.open
        onRejected: { ++page.rejections; page.open = page.keptOpen }
        content: Component {
            FocusScope {
                id: form
                objectName: "form"
                property int taps: 0
                Component.onCompleted: ++page.built
                Component.onDestruction: ++page.destroyed
                NavigationBar { id: bar; width: parent.width; title: "A form"; cancel: "Cancel"; onBack: page.open = false }
                FormPage {
                    objectName: "formPage"
                    opaque: false
                    anchors { top: bar.bottom; bottom: parent.bottom }
                    width: parent.width
                    QorField { width: parent.width; label: "Field" }
                    PrimaryButton { width: parent.width; title: "Act"; onClicked: ++form.taps }
                    Item { width: 10; height: 900 }
                }
            }
        }
    }
})";

class SheetTest : public ::testing::Test
{
protected:
    void open()
    {
        stage.item()->setProperty("open", true);
        ASSERT_TRUE(stage.screen().waitFor(u"Act"_s));
        ASSERT_TRUE(stage.screen().waitUntilStill());
    }
    bool isOpen() const { return stage.item()->property("open").toBool(); }
    int count(const char *property) const { return stage.item()->property(property).toInt(); }
    /// It has gone, and the screen is light again.
    bool closes()
    {
        const auto light = [this] { return stage.shot().pixelColor(3, 3) == stage.theme().background(); };
        return QTest::qWaitFor([&] { return !content() && light(); });
    }
    QQuickItem *content() { return named(stage.window().contentItem(), u"form"_s); }
    QObject *flickable()
    {
        QList<QQuickItem *> items = named(content(), u"formPage"_s)->childItems();
        for (auto *item : items)
            if (item->inherits("QQuickFlickable"))
                return item;
        return nullptr;
    }
    /// Of what shows; null when there is none of this name.
    static QQuickItem *named(QQuickItem *item, const QString &name)
    {
        if (!item->isVisible() || item->objectName() == name)
            return item->isVisible() ? item : nullptr;
        for (QQuickItem *child : item->childItems())
            if (QQuickItem *found = named(child, name))
                return found;
        return nullptr;
    }
    /// Where its content begins; below the window when there is none.
    qreal top() { return content() ? content()->mapToScene(QPointF()).y() : 1000; }
    bool springsBack()
    {
        return QTest::qWaitFor([this] { return top() == 20; }) && stage.screen().waitUntilStill();
    }
    QPoint bar() { return {195, static_cast<int>(top()) + 22}; }
    QPoint middle() { return {195, 400}; }

    /// Slowly enough that letting go is no flick. The delay is that of the events' own clock.
    void drag(QPoint from, QPoint by, int delay = 40)
    {
        QTest::mousePress(&stage.window(), Qt::LeftButton, Qt::NoModifier, from);
        for (int step = 1; step <= 10; ++step)
            QTest::mouseMove(&stage.window(), from + by * step / 10, delay);
        QTest::mouseRelease(&stage.window(), Qt::LeftButton, Qt::NoModifier, from + by, delay);
    }
    void dragByFinger(QPoint from, QPoint by, int pause = 40)
    {
        QTest::touchEvent(&stage.window(), finger).press(0, from);
        for (int step = 1; step <= 10; ++step) {
            QTest::qWait(pause);
            QTest::touchEvent(&stage.window(), finger).move(0, from + by * step / 10);
        }
        QTest::qWait(pause);
        QTest::touchEvent(&stage.window(), finger).release(0, from + by);
    }

    /// By a finger that stays on the sheet.
    void beginDrag()
    {
        QTest::touchEvent(&stage.window(), finger).press(0, bar());
        for (const int y : {80, 120, 160, 200}) {
            QTest::qWait(40);
            QTest::touchEvent(&stage.window(), finger).move(0, QPoint(195, y));
        }
        QTest::qWait(150); // held: no flick
        EXPECT_GT(top(), 100);
    }

    ComponentStage stage{page, QSize(390, 700)};
    QPointingDevice *finger = QTest::createTouchDevice();
};

TEST_F(SheetTest, IsBuiltWhenItOpensAndDestroyedWhenItHasClosed)
{
    EXPECT_EQ(count("built"), 0);
    open();
    EXPECT_EQ(count("built"), 1);
    stage.screen().type(u"Field"_s, u"text"_s);
    ASSERT_TRUE(stage.screen().click(u"Cancel"_s));
    ASSERT_TRUE(closes());
    EXPECT_TRUE(QTest::qWaitFor([this] { return count("destroyed") == 1; }));
    open();
    EXPECT_EQ(count("built"), 2);
    EXPECT_EQ(stage.screen().find(u"Field"_s)->object->property("text").toString(), QString());
}

TEST_F(SheetTest, SlidesUpNearlyToTheTop)
{
    stage.item()->setProperty("open", true);
    EXPECT_GT(top(), 600);
    ASSERT_TRUE(stage.screen().waitUntilStill());
    EXPECT_EQ(top(), 20);
    EXPECT_EQ(content()->width(), 390);
    EXPECT_EQ(content()->mapToScene(QPointF(0, content()->height())), QPointF(0, 700));
}

TEST_F(SheetTest, IsAFormInTheMiddleOfAWideWindow)
{
    stage.window().resize(768, 1024);
    open();
    EXPECT_EQ(content()->mapToScene(QPointF()), QPointF(114, 202));
    EXPECT_EQ(content()->size(), QSizeF(540, 620));
    for (const QPoint beside : {QPoint(50, 500), QPoint(384, 900), QPoint(384, 100)}) {
        QTest::mouseClick(&stage.window(), Qt::LeftButton, Qt::NoModifier, beside);
        EXPECT_EQ(count("rejections"), 1) << beside.x() << ", " << beside.y();
        ASSERT_TRUE(closes());
        stage.item()->setProperty("rejections", 0);
        open();
    }
}

TEST_F(SheetTest, FollowsTheWindow)
{
    open();
    stage.window().resize(320, 568);
    EXPECT_TRUE(QTest::qWaitFor([this] { return content()->size() == QSizeF(320, 548); }));
}

TEST_F(SheetTest, EscapeBackAndATapBesideDismiss)
{
    open();
    stage.screen().key(Qt::Key_Escape);
    EXPECT_EQ(count("rejections"), 1);
    ASSERT_TRUE(closes());
    open();
    stage.screen().key(Qt::Key_Back);
    EXPECT_EQ(count("rejections"), 2);
    ASSERT_TRUE(closes());
    open();
    QTest::mouseClick(&stage.window(), Qt::LeftButton, Qt::NoModifier, QPoint(195, 8));
    EXPECT_EQ(count("rejections"), 3);
}

TEST_F(SheetTest, FollowsTheMouseAndSpringsBackFromALittleWay)
{
    open();
    QTest::mousePress(&stage.window(), Qt::LeftButton, Qt::NoModifier, bar());
    QTest::mouseMove(&stage.window(), bar() + QPoint(0, 30), 40);
    QTest::mouseMove(&stage.window(), QPoint(195, 42 + 100), 40);
    EXPECT_NEAR(top(), 120, 31); // but for the way after which it is a drag
    const qreal before = top();
    QTest::mouseMove(&stage.window(), QPoint(195, 42 + 80), 40);
    EXPECT_NEAR(top(), before - 20, 1);
    QTest::mouseMove(&stage.window(), QPoint(195, 42 + 100), 40);
    QTest::qWait(100);
    QTest::mouseMove(&stage.window(), QPoint(195, 42 + 101), 200); // held: no flick
    QTest::mouseRelease(&stage.window(), Qt::LeftButton, Qt::NoModifier, QPoint(195, 42 + 101), 200);
    EXPECT_TRUE(springsBack());
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(count("rejections"), 0);
    EXPECT_EQ(count("built"), 1);
}

TEST_F(SheetTest, DraggedFarItGoes)
{
    open();
    drag(bar(), QPoint(0, 300), 60);
    EXPECT_EQ(count("rejections"), 1);
    EXPECT_TRUE(closes());
}

TEST_F(SheetTest, DraggedByAFinger)
{
    open();
    dragByFinger(bar(), QPoint(0, 60));
    EXPECT_TRUE(springsBack());
    EXPECT_EQ(count("rejections"), 0);
    dragByFinger(bar(), QPoint(0, 300));
    EXPECT_EQ(count("rejections"), 1);
    EXPECT_TRUE(closes());
}

TEST_F(SheetTest, AFlickIsEnough)
{
    open();
    drag(bar(), QPoint(0, 120), 10); // not yet a third of the way
    EXPECT_TRUE(closes());
    EXPECT_EQ(count("rejections"), 1);
}

TEST_F(SheetTest, AFlickIsEnoughWithoutMotionToo)
{
    stage.theme().setReducedMotion(true);
    stage.item()->setProperty("open", true);
    ASSERT_TRUE(stage.screen().waitUntilStill());
    drag(bar(), QPoint(0, 120), 10);
    EXPECT_TRUE(closes());
    EXPECT_EQ(count("rejections"), 1);
}

TEST_F(SheetTest, AFastDragThatIsHeldStillInTheEndIsNoFlick)
{
    open();
    const QPoint from = bar();
    QTest::touchEvent(&stage.window(), finger).press(0, from);
    for (int step = 1; step <= 10; ++step) {
        QTest::qWait(10);
        QTest::touchEvent(&stage.window(), finger).move(0, from + QPoint(0, 12 * step));
    }
    QTest::qWait(200);
    QTest::touchEvent(&stage.window(), finger).release(0, from + QPoint(0, 120));
    EXPECT_TRUE(springsBack());
    EXPECT_EQ(count("rejections"), 0);
}

TEST_F(SheetTest, ContentAtItsTopDragsTheSheetDown)
{
    open();
    dragByFinger(middle(), QPoint(0, 260));
    EXPECT_EQ(count("rejections"), 1);
    ASSERT_TRUE(closes());
    open();
    drag(middle(), QPoint(0, 260), 60);
    EXPECT_EQ(count("rejections"), 2);
}

TEST_F(SheetTest, ContentThatIsScrolledScrolls)
{
    open();
    ASSERT_TRUE(flickable());
    flickable()->setProperty("contentY", 200);
    dragByFinger(middle(), QPoint(0, 150));
    EXPECT_LT(flickable()->property("contentY").toReal(), 200);
    EXPECT_EQ(top(), 20);
    EXPECT_EQ(count("rejections"), 0);
}

TEST_F(SheetTest, ADragUpwardsScrollsAndStaysAScroll)
{
    open();
    QTest::touchEvent(&stage.window(), finger).press(0, middle());
    for (const int y : {-20, -60, -100, -60, 0, 60, 120, 200}) {
        QTest::qWait(30);
        QTest::touchEvent(&stage.window(), finger).move(0, middle() + QPoint(0, y));
        EXPECT_TRUE(nextFrame(stage.window()));
    }
    EXPECT_EQ(top(), 20);
    QTest::touchEvent(&stage.window(), finger).release(0, middle() + QPoint(0, 200));
    EXPECT_EQ(count("rejections"), 0);
}

TEST_F(SheetTest, ADragSidewaysIsNone)
{
    open();
    drag(bar(), QPoint(-150, 40));
    EXPECT_EQ(top(), 20);
    EXPECT_EQ(count("rejections"), 0);
}

TEST_F(SheetTest, APressThatBecomesADragPressesNothing)
{
    open();
    dragByFinger(stage.screen().find(u"Act"_s)->rect.center(), QPoint(0, 80));
    QTest::qWait(350);
    EXPECT_EQ(content()->property("taps").toInt(), 0);
    ASSERT_TRUE(stage.screen().waitUntilStill());
    ASSERT_TRUE(stage.screen().click(u"Act"_s));
    EXPECT_EQ(content()->property("taps").toInt(), 1);
}

TEST_F(SheetTest, ADragThatTheSystemTakesAwaySpringsBack)
{
    open();
    beginDrag();
    QTouchEvent cancel(QEvent::TouchCancel, finger);
    QCoreApplication::sendEvent(&stage.window(), &cancel);
    EXPECT_TRUE(springsBack());
    EXPECT_EQ(count("rejections"), 0);
    EXPECT_TRUE(isOpen());
}

TEST_F(SheetTest, AReleaseThatNeverComesLeavesNothingBehind)
{
    open();
    beginDrag();
    stage.window().hide();
    stage.window().show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&stage.window()));
    QTest::mouseClick(&stage.window(), Qt::LeftButton, Qt::NoModifier, QPoint(195, 600));
    EXPECT_TRUE(springsBack());
    EXPECT_EQ(count("rejections"), 0);
}

TEST_F(SheetTest, EscapeInTheMiddleOfADrag)
{
    open();
    QTest::mousePress(&stage.window(), Qt::LeftButton, Qt::NoModifier, bar());
    QTest::mouseMove(&stage.window(), bar() + QPoint(0, 40), 40);
    QTest::mouseMove(&stage.window(), QPoint(195, 200), 40);
    stage.screen().key(Qt::Key_Escape);
    QTest::mouseMove(&stage.window(), QPoint(195, 240), 40);
    QTest::mouseRelease(&stage.window(), Qt::LeftButton, Qt::NoModifier, QPoint(195, 240), 40);
    EXPECT_EQ(count("rejections"), 1);
    EXPECT_TRUE(closes());
}

TEST_F(SheetTest, AnOwnerThatKeepsItOpenGetsItBack)
{
    open();
    stage.item()->setProperty("keptOpen", true);
    drag(bar(), QPoint(0, 300), 60);
    EXPECT_EQ(count("rejections"), 1);
    EXPECT_TRUE(springsBack());
    EXPECT_TRUE(isOpen());
}

TEST_F(SheetTest, WhatWasTypedSurvivesAWindowThatBecomesWide)
{
    open();
    ASSERT_TRUE(stage.screen().type(u"Field"_s, u"text"_s));
    stage.window().resize(768, 1024);
    EXPECT_TRUE(QTest::qWaitFor([this] { return content()->size() == QSizeF(540, 620); }));
    stage.window().resize(390, 700);
    EXPECT_TRUE(QTest::qWaitFor([this] { return content()->size() == QSizeF(390, 680); }));
    EXPECT_EQ(top(), 20);
    EXPECT_EQ(stage.screen().find(u"Field"_s)->object->property("text").toString(), u"text"_s);
    EXPECT_EQ(count("built"), 1);
}

TEST_F(SheetTest, WithoutMotionItOpensAndClosesAtOnce)
{
    stage.theme().setReducedMotion(true);
    stage.item()->setProperty("open", true);
    EXPECT_EQ(top(), 20);
    stage.item()->setProperty("open", false);
    EXPECT_FALSE(stage.screen().shows(u"Act"_s));
    EXPECT_EQ(stage.shot().pixelColor(3, 3), stage.theme().background());
}

TEST_F(SheetTest, IsAModalDialogNamedByItsTitle)
{
    open();
    const auto dialog = stage.screen().find(u"A form"_s, QAccessible::Dialog);
    ASSERT_TRUE(dialog);
    EXPECT_TRUE(dialog->state.modal);
}

TEST_F(SheetTest, TabGoesRoundInside)
{
    open();
    QStringList visited;
    for (int presses = 0; presses < 4; ++presses) {
        stage.screen().key(Qt::Key_Tab);
        auto *interface = QAccessible::queryAccessibleInterface(stage.window().activeFocusItem());
        visited.append(interface->text(QAccessible::Name));
    }
    EXPECT_EQ(visited, (QStringList{u"Cancel"_s, u"Field"_s, u"Act"_s, u"Cancel"_s}));
}

TEST_F(SheetTest, ATitleThatDoesNotFitBesideTheWordStandsBelowIt)
{
    stage.theme().setTextScale(2);
    stage.window().resize(320, 568);
    stage.item()->setProperty("open", true);
    ASSERT_TRUE(stage.screen().waitFor(u"Cancel"_s));
    const auto cancel = stage.screen().find(u"Cancel"_s)->rect;
    const auto title = stage.screen().find(u"A form"_s, QAccessible::StaticText)->rect;
    EXPECT_FALSE(cancel.intersects(title));
    EXPECT_GE(title.left(), 0);
    EXPECT_LE(title.right(), 320);
}

} // namespace
} // namespace clockwell::test
