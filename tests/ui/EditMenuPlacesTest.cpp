#include "EditMenuStage.h"
#include "StackDriver.h"
#include "support/screen/TextIn.h"
#include "ui/Theme.h"

#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace clockwell::test {
namespace {

const auto paste = u"Paste"_s;
const auto everything = QStringList({u"Cut"_s, u"Copy"_s, u"Paste"_s, u"Select all"_s});

// Where it stands.

class EditMenuPlacesTest : public EditMenuStage
{
protected:
    QRect frame() const { return field()->mapRectToScene(QRectF(QPointF(), field()->size())).toRect(); }
    void offerEverything()
    {
        setText(u"hello world"_s);
        select(0, 5);
        key(Qt::Key_Menu);
        settle();
        ASSERT_EQ(offered(), everything);
    }
    void expectInside()
    {
        EXPECT_TRUE(QRect(QPoint(), stage.window().size()).adjusted(8, 8, -8, -8).contains(menu()))
            << menu().x() << ',' << menu().y() << ' ' << menu().width() << 'x' << menu().height();
        for (const auto &name : offered()) {
            const auto element = stage.screen().find(name, QAccessible::MenuItem);
            EXPECT_TRUE(menu().contains(element->rect)) << name.toStdString();
            EXPECT_GE(element->rect.height(), 44) << name.toStdString();
            EXPECT_GE(element->rect.width(), 44) << name.toStdString();
            const auto *label = textIn(element->object);
            ASSERT_TRUE(label) << name.toStdString();
            EXPECT_LE(label->implicitWidth() + 16, element->rect.width()) << name.toStdString();
        }
    }
    bool isABar()
    {
        const auto one = stage.screen().find(offered().first(), QAccessible::MenuItem)->rect;
        const auto last = stage.screen().find(offered().last(), QAccessible::MenuItem)->rect;
        return one.top() == last.top();
    }
};

TEST_F(EditMenuPlacesTest, JustAboveTheField)
{
    offerEverything();
    EXPECT_EQ(menu().bottom() + 1, frame().top() - 8);
    EXPECT_TRUE(isABar());
    expectInside();
}

TEST_F(EditMenuPlacesTest, BelowTheFieldWhereThereIsNoRoomAbove)
{
    field()->setY(0);
    offerEverything();
    EXPECT_EQ(menu().top(), frame().bottom() + 1 + 8);
    expectInside();
}

TEST_F(EditMenuPlacesTest, AboveAsSoonAsThereIsRoomForIt)
{
    const int aboveIt = 8 + 44 + 8 - 20; // in the page, which begins at 20
    field()->setY(aboveIt - 1);
    offerEverything();
    EXPECT_EQ(menu().top(), frame().bottom() + 1 + 8);
    key(Qt::Key_Escape);
    field()->setY(aboveIt);
    offerEverything();
    EXPECT_EQ(menu().top(), 8);
}

TEST_F(EditMenuPlacesTest, BetweenTheSidesOfTheField)
{
    field()->setX(10);
    field()->setWidth(330);
    setText(u"hello world, how are you, and what are you doing?"_s);
    select(0, 1);
    key(Qt::Key_Menu);
    settle();
    EXPECT_EQ(menu().left(), frame().left());
    key(Qt::Key_Escape);
    const auto end = static_cast<int>(text().size());
    select(end - 1, end);
    key(Qt::Key_Menu);
    settle();
    EXPECT_EQ(menu().right(), frame().right());
}

TEST_F(EditMenuPlacesTest, WiderThanTheFieldItStaysInsideTheWindow)
{
    field()->setWidth(100);
    offerEverything();
    EXPECT_GT(menu().width(), 100);
    EXPECT_EQ(menu().left(), 8);
    key(Qt::Key_Escape);
    field()->setX(250);
    offerEverything();
    EXPECT_EQ(menu().right() + 1, 390 - 8);
    key(Qt::Key_Escape);
    field()->setX(-100); // a part of it is outside
    field()->setWidth(350);
    offerEverything();
    EXPECT_EQ(menu().left(), 8);
}

TEST_F(EditMenuPlacesTest, InsideWhereThereIsRoomOnNeitherSide)
{
    stage.window().resize(320, 400);
    ASSERT_TRUE(QTest::qWaitFor([this] { return stage.window().contentItem()->width() == 320; }));
    stage.theme().setTextScale(2);
    field()->setWidth(280);
    field()->setY(180);
    offerEverything();
    ASSERT_FALSE(isABar());
    EXPECT_EQ(menu().top(), 8); // there is more room above than below
    expectInside();
    key(Qt::Key_Escape);
    field()->setY(80);
    offerEverything();
    EXPECT_EQ(menu().bottom() + 1, 400 - 8);
    expectInside();
}

TEST_F(EditMenuPlacesTest, BeginsAtTheEdgeWhereItIsTooLarge)
{
    stage.window().resize(120, 200);
    ASSERT_TRUE(QTest::qWaitFor([this] { return stage.window().contentItem()->width() == 120; }));
    stage.theme().setTextScale(3);
    setText(u"hello world"_s);
    select(0, 5);
    key(Qt::Key_Menu);
    settle();
    ASSERT_TRUE(isOpen());
    EXPECT_EQ(menu().topLeft(), QPoint(8, 8));
}

TEST_F(EditMenuPlacesTest, OnWholePoints)
{
    field()->setX(.3);
    field()->setY(120.4);
    offerEverything();
    const QQuickItem *item = qobject_cast<QQuickItem *>(menus().constFirst().object);
    const QPointF place = item->mapToScene(QPointF());
    EXPECT_EQ(place, QPointF(place.toPoint()));
}

TEST_F(EditMenuPlacesTest, OverTheCursor)
{
    setText(u"hello world, how are you"_s);
    longPress(at());
    EXPECT_NEAR(menu().center().x(), at().x() - 30, 2);
}

TEST_F(EditMenuPlacesTest, InsideANarrowWindow)
{
    stage.window().resize(320, 568);
    ASSERT_TRUE(QTest::qWaitFor([this] { return stage.window().contentItem()->width() == 320; }));
    field()->setWidth(280);
    offerEverything();
    EXPECT_TRUE(isABar());
    expectInside();
}

TEST_F(EditMenuPlacesTest, InsideANarrowWindowWithLargeText)
{
    stage.window().resize(320, 568);
    ASSERT_TRUE(QTest::qWaitFor([this] { return stage.window().contentItem()->width() == 320; }));
    field()->setWidth(280);
    stage.theme().setTextScale(2);
    offerEverything();
    EXPECT_FALSE(isABar());
    expectInside();
    stage.theme().setTextScale(3);
    key(Qt::Key_Escape);
    offerEverything();
    expectInside();
}

TEST_F(EditMenuPlacesTest, GoesAlongWithTheField)
{
    offerEverything();
    const QPoint before = menu().topLeft();
    stage.item()->setY(stage.item()->y() + 40); // as when the on-screen keyboard opens
    settle();
    EXPECT_EQ(menu().topLeft(), before + QPoint(0, 40));
}

// A form that scrolls.

class EditMenuScrollingTest : public EditMenuStage
{
protected:
    EditMenuScrollingTest()
        : EditMenuStage(R"(Flickable {
            width: 350; height: 360; contentHeight: 1200
            QorField { objectName: "field"; y: 200; width: 350; label: "Field"; text: "hello world" }
        })")
    {}
    qreal scrolled() const { return stage.item()->property("contentY").toReal(); }
};

TEST_F(EditMenuScrollingTest, ADragFromTheFieldScrollsAndOpensNothing)
{
    makeLongPressesLong();
    const QPoint from = at(1);
    touch(from);
    for (int step = 1; step <= 6; ++step)
        drag(from - QPoint(0, 15 * step));
    QTest::qWait(longHold + 100);
    EXPECT_GT(scrolled(), 30);
    EXPECT_FALSE(isOpen());
    lift(from - QPoint(0, 90));
    EXPECT_EQ(selected(), QString());
}

TEST_F(EditMenuScrollingTest, AScrollClosesIt)
{
    longPress(at(1));
    ASSERT_TRUE(isOpen());
    const QPoint from(200, 350);
    touch(from);
    for (int step = 1; step <= 6; ++step)
        drag(from - QPoint(0, 15 * step));
    EXPECT_FALSE(isOpen());
    EXPECT_GT(scrolled(), 30);
    lift(from - QPoint(0, 90));
}

TEST_F(EditMenuScrollingTest, AfterALongPressTheFingerScrollsNothing)
{
    const QPoint from = at(1);
    touch(from);
    QTest::qWait(hold + 100);
    ASSERT_TRUE(isOpen());
    for (int step = 1; step <= 6; ++step)
        drag(from - QPoint(0, 15 * step));
    lift(from - QPoint(0, 90));
    EXPECT_EQ(scrolled(), 0);
    EXPECT_TRUE(isOpen());
    tap(QPoint(200, 395)); // and the next drag from the field scrolls again
    touch(from);
    for (int step = 1; step <= 6; ++step)
        drag(from - QPoint(0, 15 * step));
    EXPECT_GT(scrolled(), 30);
    lift(from - QPoint(0, 90));
}

// A screen on a stack.

class EditMenuOnAStackTest : public EditMenuStage
{
protected:
    EditMenuOnAStackTest()
        : EditMenuStage(StackDriver::qml(R"(
        x: -20; y: -20; width: 390; height: 400
        initialItem: PrimaryButton { title: "First" }
    )"))
    {
        stack.push(page);
        EXPECT_TRUE(stage.screen().waitUntilStill());
    }
    bool wentBack()
    {
        return QTest::qWaitFor([this] { return stack.depth() == 1 && !stack.isMoving(); });
    }

    QTemporaryDir m_files;
    QUrl page = writeScreen(m_files.filePath(u"Page.qml"_s), R"(NavigationPage {
        title: "Page"
        QorField { objectName: "field"; x: 10; y: 140; width: 370; label: "Field"; text: "hello" }
    })");
    StackDriver stack{stage.item()};
};

TEST_F(EditMenuOnAStackTest, GoesWithItsScreen)
{
    longPress(at());
    ASSERT_TRUE(isOpen());
    stack.pop();
    EXPECT_FALSE(isOpen());
    EXPECT_TRUE(wentBack());
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuOnAStackTest, GoesWhenAScreenIsPushedOverIt)
{
    longPress(at());
    ASSERT_TRUE(isOpen());
    stack.push(page);
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuOnAStackTest, EscapeClosesItAndNotTheScreen)
{
    longPress(at());
    ASSERT_TRUE(isOpen());
    key(Qt::Key_Escape);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(stack.depth(), 2);
    key(Qt::Key_Escape);
    EXPECT_TRUE(wentBack());
}

TEST_F(EditMenuOnAStackTest, ASwipeFromTheEdgeOverTheFieldStillGoesBack)
{
    field()->forceActiveFocus();
    const QPoint from(15, at().y());
    touch(from);
    for (int step = 1; step <= 10; ++step)
        drag(from + QPoint(27 * step, 0));
    EXPECT_EQ(stack.currentItem()->x(), 270);
    lift(from + QPoint(270, 0));
    EXPECT_TRUE(wentBack());
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuOnAStackTest, ASwipeThatRestsOpensNothing)
{
    const QPoint from(15, at().y());
    touch(from);
    for (int step = 1; step <= 3; ++step)
        drag(from + QPoint(27 * step, 0));
    QTest::qWait(hold + 100);
    EXPECT_FALSE(isOpen());
    lift(from + QPoint(81, 0));
}

TEST_F(EditMenuOnAStackTest, ASwipeWhileItIsOpenClosesItAndGoesBack)
{
    longPress(at());
    ASSERT_TRUE(isOpen());
    const QPoint from(8, 350);
    touch(from);
    EXPECT_FALSE(isOpen());
    for (int step = 1; step <= 10; ++step)
        drag(from + QPoint(27 * step, 0));
    lift(from + QPoint(270, 0));
    EXPECT_TRUE(wentBack());
}

// Below and inside of what opens above a screen.

class EditMenuAndModalsTest : public EditMenuStage
{
protected:
    EditMenuAndModalsTest()
        : EditMenuStage(R"(FocusScope {
        id: page
        property bool alertShown: false
        property bool sheetShown: false
        width: 350; height: 360; focus: true
        QorField { objectName: "field"; y: 10; width: 350; label: "Field"; text: "hello"; focus: true }
        Alert {
            shown: page.alertShown
            title: "Wait"; button: "OK"
            onAccepted: page.alertShown = false
        }
        Sheet {
            objectName: "sheet"
            title: "Sheet"
            shown: page.sheetShown
            onRejected: page.sheetShown = false
            content: Component {
                FocusScope {
                    QorField { y: 150; x: 20; width: 350; label: "Inner"; focus: true }
                }
            }
        }
    })")
    {}
    QRect rectOf(const QString &name)
    {
        const auto element = stage.screen().find(name);
        EXPECT_TRUE(element) << name.toStdString();
        return element ? element->rect : QRect();
    }
    void openSheet()
    {
        stage.item()->setProperty("sheetShown", true);
        ASSERT_TRUE(stage.screen().waitFor(u"Inner"_s));
        ASSERT_TRUE(stage.screen().waitUntilStill());
    }
};

TEST_F(EditMenuAndModalsTest, AFieldBelowAnAlertOpensNothing)
{
    const QPoint place = at();
    stage.item()->setProperty("alertShown", true);
    ASSERT_TRUE(stage.screen().waitFor(u"OK"_s));
    ASSERT_TRUE(stage.screen().waitUntilStill());
    longPress(place);
    EXPECT_FALSE(isOpen());
    click(place, Qt::RightButton);
    EXPECT_FALSE(isOpen());
    key(Qt::Key_Menu);
    EXPECT_FALSE(isOpen());
    QAccessible::queryAccessibleInterface(input())->actionInterface()->doAction(
        QAccessibleActionInterface::showMenuAction());
    EXPECT_FALSE(isOpen());
    EXPECT_FALSE(input()->hasActiveFocus());
}

TEST_F(EditMenuAndModalsTest, AnAlertThatOpensClosesIt)
{
    longPress(at());
    ASSERT_TRUE(isOpen());
    stage.item()->setProperty("alertShown", true);
    ASSERT_TRUE(stage.screen().waitFor(u"OK"_s));
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuAndModalsTest, AnAlertThatOpensUnderTheFingerKeepsItClosed)
{
    touch(at());
    stage.item()->setProperty("alertShown", true);
    ASSERT_TRUE(stage.screen().waitFor(u"OK"_s));
    QTest::qWait(hold + 100);
    EXPECT_FALSE(isOpen());
    EXPECT_FALSE(input()->hasActiveFocus());
    lift(at());
}

TEST_F(EditMenuAndModalsTest, AFieldInsideASheetOpensItAboveTheSheet)
{
    openSheet();
    longPress(rectOf(u"Inner"_s).center());
    ASSERT_EQ(offered(), QStringList(paste));
    EXPECT_EQ(menu().bottom() + 1, rectOf(u"Inner"_s).top() - 8);
    const QPoint middle = menu().center();
    EXPECT_EQ(stage.shot().pixelColor(menu().left() + 6, middle.y()).rgb(),
              stage.theme().surface().lighter(125).rgb());
    tap(middle);
    EXPECT_FALSE(isOpen());
    auto *inner = QAccessible::queryAccessibleInterface(stage.screen().find(u"Inner"_s)->object);
    EXPECT_EQ(inner->text(QAccessible::Value), u"copied"_s);
    EXPECT_TRUE(stage.item()->property("sheetShown").toBool());
}

TEST_F(EditMenuAndModalsTest, TheKeyboardStaysInTheMenuOfASheet)
{
    openSheet();
    key(Qt::Key_Menu);
    ASSERT_EQ(offered(), QStringList(paste));
    key(Qt::Key_Tab);
    EXPECT_EQ(reached(), paste);
    key(Qt::Key_Escape);
    EXPECT_FALSE(isOpen());
    EXPECT_TRUE(stage.item()->property("sheetShown").toBool());
    key(Qt::Key_Escape);
    EXPECT_FALSE(stage.item()->property("sheetShown").toBool());
}

TEST_F(EditMenuAndModalsTest, ItGoesWithItsSheet)
{
    openSheet();
    key(Qt::Key_Menu);
    ASSERT_TRUE(isOpen());
    stage.item()->setProperty("sheetShown", false);
    EXPECT_FALSE(isOpen());
    EXPECT_TRUE(QTest::qWaitFor([this] { return !stage.screen().shows(u"Sheet"_s); }));
    EXPECT_FALSE(isOpen());
}

} // namespace
} // namespace clockwell::test
