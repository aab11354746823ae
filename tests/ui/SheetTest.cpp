#include "ComponentStage.h"
#include "ui/SheetControl.h"
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
    property int dismissals: 0
    property int built: 0
    property int destroyed: 0
    id: page
    width: 350; height: 660
    Sheet {
        objectName: "sheet"
        title: "A form"
        shown: page.open
        onDismissed: { ++page.dismissals; page.open = page.keptOpen }
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
                    PrimaryButton { width: parent.width; title: "Act"; onTriggered: ++form.taps }
                    Item { width: 10; height: 900 }
                }
            }
        }
    }
})";

class SheetTest : public ::testing::Test
{
protected:
    SheetTest() { sheet = qobject_cast<SheetControl *>(stage.part("sheet")); }

    void open()
    {
        stage.item()->setProperty("open", true);
        ASSERT_TRUE(stage.screen().waitFor(u"Act"_s));
        ASSERT_TRUE(stage.screen().waitUntilStill());
    }
    bool isOpen() const { return stage.item()->property("open").toBool(); }
    int count(const char *property) const { return stage.item()->property(property).toInt(); }
    bool closes() const
    {
        return QTest::qWaitFor([this] { return !sheet->isVisible(); });
    }
    QQuickItem *content() { return sheet->findChild<QQuickItem *>(u"form"_s); }
    QObject *flickable()
    {
        QList<QQuickItem *> items = content()->findChild<QQuickItem *>(u"formPage"_s)->childItems();
        for (auto *item : items)
            if (item->inherits("QQuickFlickable"))
                return item;
        return nullptr;
    }
    QPoint bar() { return {195, static_cast<int>(sheet->panel()->y()) + 22}; }
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

    ComponentStage stage{page, QSize(390, 700)};
    SheetControl *sheet = nullptr;
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
    EXPECT_GT(sheet->panel()->y(), 600);
    ASSERT_TRUE(stage.screen().waitUntilStill());
    EXPECT_EQ(sheet->panel()->y(), 20);
    EXPECT_EQ(sheet->panel()->width(), 390);
    EXPECT_EQ(content()->mapToScene(QPointF(0, content()->height())), QPointF(0, 700));
}

TEST_F(SheetTest, IsAFormInTheMiddleOfAWideWindow)
{
    stage.window().resize(768, 1024);
    open();
    EXPECT_EQ(sheet->panel()->width(), 540);
    EXPECT_EQ(sheet->panel()->x(), 114);
    EXPECT_EQ(content()->height(), 620);
    EXPECT_EQ(sheet->panel()->y(), 202);
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
    EXPECT_EQ(count("dismissals"), 1);
    ASSERT_TRUE(closes());
    open();
    stage.screen().key(Qt::Key_Back);
    EXPECT_EQ(count("dismissals"), 2);
    ASSERT_TRUE(closes());
    open();
    QTest::mouseClick(&stage.window(), Qt::LeftButton, Qt::NoModifier, QPoint(195, 8));
    EXPECT_EQ(count("dismissals"), 3);
}

TEST_F(SheetTest, FollowsTheMouseAndSpringsBackFromALittleWay)
{
    open();
    QTest::mousePress(&stage.window(), Qt::LeftButton, Qt::NoModifier, bar());
    QTest::mouseMove(&stage.window(), bar() + QPoint(0, 30), 40);
    QTest::mouseMove(&stage.window(), QPoint(195, 42 + 100), 40);
    EXPECT_NEAR(sheet->panel()->y(), 120, 1);
    QTest::qWait(100);
    QTest::mouseMove(&stage.window(), QPoint(195, 42 + 101), 200); // held: no flick
    QTest::mouseRelease(&stage.window(), Qt::LeftButton, Qt::NoModifier, QPoint(195, 42 + 101), 200);
    EXPECT_TRUE(QTest::qWaitFor([this] { return sheet->panel()->y() == 20; }));
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(count("dismissals"), 0);
    EXPECT_EQ(count("built"), 1);
}

TEST_F(SheetTest, DraggedFarItGoes)
{
    open();
    drag(bar(), QPoint(0, 300), 60);
    EXPECT_EQ(count("dismissals"), 1);
    EXPECT_TRUE(closes());
}

TEST_F(SheetTest, DraggedByAFinger)
{
    open();
    dragByFinger(bar(), QPoint(0, 60));
    QTest::qWait(400);
    EXPECT_EQ(count("dismissals"), 0);
    EXPECT_EQ(sheet->panel()->y(), 20);
    dragByFinger(bar(), QPoint(0, 300));
    EXPECT_EQ(count("dismissals"), 1);
    EXPECT_TRUE(closes());
}

TEST_F(SheetTest, AFlickIsEnough)
{
    open();
    drag(bar(), QPoint(0, 120), 10); // not yet a third of the way
    EXPECT_EQ(count("dismissals"), 1);
}

TEST_F(SheetTest, ContentAtItsTopDragsTheSheetDown)
{
    open();
    dragByFinger(middle(), QPoint(0, 260));
    EXPECT_EQ(count("dismissals"), 1);
    ASSERT_TRUE(closes());
    open();
    drag(middle(), QPoint(0, 260), 60);
    EXPECT_EQ(count("dismissals"), 2);
}

TEST_F(SheetTest, ContentThatIsScrolledScrolls)
{
    open();
    ASSERT_TRUE(flickable());
    flickable()->setProperty("contentY", 200);
    dragByFinger(middle(), QPoint(0, 150));
    EXPECT_LT(flickable()->property("contentY").toReal(), 200);
    EXPECT_EQ(sheet->panel()->y(), 20);
    EXPECT_EQ(count("dismissals"), 0);
}

TEST_F(SheetTest, ADragUpwardsScrollsAndStaysAScroll)
{
    open();
    QTest::touchEvent(&stage.window(), finger).press(0, middle());
    for (const int y : {-20, -60, -100, -60, 0, 60, 120, 200}) {
        QTest::qWait(30);
        QTest::touchEvent(&stage.window(), finger).move(0, middle() + QPoint(0, y));
    }
    EXPECT_EQ(sheet->panel()->y(), 20);
    QTest::touchEvent(&stage.window(), finger).release(0, middle() + QPoint(0, 200));
    EXPECT_EQ(count("dismissals"), 0);
}

TEST_F(SheetTest, ADragSidewaysIsNone)
{
    open();
    drag(bar(), QPoint(-150, 40));
    EXPECT_EQ(sheet->panel()->y(), 20);
    EXPECT_EQ(count("dismissals"), 0);
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

TEST_F(SheetTest, ADragThatIsTakenAwaySpringsBack)
{
    open();
    QTest::mousePress(&stage.window(), Qt::LeftButton, Qt::NoModifier, bar());
    QTest::mouseMove(&stage.window(), bar() + QPoint(0, 40), 40);
    QTest::mouseMove(&stage.window(), QPoint(195, 300), 40);
    ASSERT_GT(sheet->panel()->y(), 100);
    ASSERT_EQ(stage.window().mouseGrabberItem(), sheet);
    sheet->ungrabMouse();
    EXPECT_TRUE(QTest::qWaitFor([this] { return sheet->panel()->y() == 20; }));
    QTest::mouseRelease(&stage.window(), Qt::LeftButton, Qt::NoModifier, QPoint(195, 300), 40);
    EXPECT_EQ(count("dismissals"), 0);
}

TEST_F(SheetTest, AReleaseThatNeverComesLeavesNothingBehind)
{
    open();
    QTest::mousePress(&stage.window(), Qt::LeftButton, Qt::NoModifier, bar());
    QTest::mouseMove(&stage.window(), bar() + QPoint(0, 40), 40);
    QTest::mouseMove(&stage.window(), QPoint(195, 300), 40);
    ASSERT_GT(sheet->panel()->y(), 100);
    const QPoint onPanel(195, 600);
    dragByFinger(onPanel, QPoint(0, 4)); // no drag of its own
    EXPECT_TRUE(QTest::qWaitFor([this] { return sheet->panel()->y() == 20; }));
    EXPECT_EQ(count("dismissals"), 0);
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
    EXPECT_EQ(count("dismissals"), 1);
    EXPECT_TRUE(closes());
}

TEST_F(SheetTest, AnOwnerThatKeepsItOpenGetsItBack)
{
    open();
    stage.item()->setProperty("keptOpen", true);
    drag(bar(), QPoint(0, 300), 60);
    EXPECT_EQ(count("dismissals"), 1);
    EXPECT_TRUE(QTest::qWaitFor([this] { return sheet->panel()->y() == 20; }));
    EXPECT_TRUE(isOpen());
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
