#include "ComponentStage.h"
#include "StackDriver.h"
#include "ui/Theme.h"

#include <QPointer>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace clockwell::test {
namespace {

// A page with a control, a field and a key of its own, and all that can open above it.
const QByteArray page = R"(FocusScope {
    id: page
    property int taps: 0
    property int keys: 0
    property int accepts: 0
    property int rejections: 0
    property bool alertShown: false
    property bool dialogShown: false
    property string message: "You can go on."
    width: 350; height: 360; focus: true
    Keys.onPressed: event => { ++keys; event.accepted = true }
    Shortcut { sequences: ["F5"]; onActivated: ++page.keys }
    Flickable { objectName: "list"; y: 150; width: 350; height: 150; contentHeight: 900; Rectangle { width: 9; height: 900 } }
    PrimaryButton { objectName: "below"; y: 300; width: 350; title: "Below"; onClicked: ++page.taps }
    QorField { objectName: "field"; y: 200; width: 350; label: "Field"; focus: true }
    Alert {
        shown: page.alertShown
        title: "It is done"; message: page.message; button: "OK"
        onAccepted: { ++page.accepts; page.alertShown = false }
    }
    ConfirmationDialog {
        shown: page.dialogShown
        title: "Really?"; action: "Do it"; destructive: true
        onAccepted: { ++page.accepts; page.dialogShown = false }
        onRejected: { ++page.rejections; page.dialogShown = false }
    }
})";

class DialogTest : public ::testing::Test
{
protected:
    void show(const char *flag, bool shown = true) { stage.item()->setProperty(flag, shown); }
    void openAlert()
    {
        show("alertShown");
        ASSERT_TRUE(stage.screen().waitFor(u"OK"_s));
        ASSERT_TRUE(stage.screen().waitUntilStill());
    }
    void openDialog()
    {
        show("dialogShown");
        ASSERT_TRUE(stage.screen().waitFor(u"Do it"_s));
        ASSERT_TRUE(stage.screen().waitUntilStill());
    }
    int count(const char *property) const { return stage.item()->property(property).toInt(); }
    /// How light a corner of the window is, which no dialog reaches: 1 when nothing dims it.
    qreal light(QPoint corner = QPoint(3, 3))
    {
        return stage.shot().pixelColor(corner).lightnessF() / stage.theme().background().lightnessF();
    }
    bool isLight() { return qAbs(light() - 1) < 0.05; }
    bool isDim() { return qAbs(light() - 0.4) < 0.05; }
    bool closes()
    {
        return QTest::qWaitFor([this] { return isLight(); }) && stage.screen().waitUntilStill();
    }
    QString focused() { return focusName(stage.window().activeFocusItem()); }
    static QString focusName(const QQuickItem *item)
    {
        auto *interface =
            item ? QAccessible::queryAccessibleInterface(const_cast<QQuickItem *>(item)) : nullptr;
        return interface ? interface->text(QAccessible::Name) : QString();
    }
    QPoint middleOf(const char *part) const
    {
        const auto *item = stage.part(part);
        return item->mapToScene(item->boundingRect().center()).toPoint();
    }
    void click(QPoint at) { QTest::mouseClick(&stage.window(), Qt::LeftButton, Qt::NoModifier, at); }

    ComponentStage stage{page};
};

TEST_F(DialogTest, CostsNothingWhileItIsClosed)
{
    EXPECT_TRUE(isLight());
    EXPECT_FALSE(stage.screen().shows(u"OK"_s));
    EXPECT_FALSE(stage.screen().shows(u"Do it"_s));
    EXPECT_TRUE(stage.screen().shows(u"Below"_s));
    click(middleOf("below"));
    EXPECT_EQ(count("taps"), 1);
}

TEST_F(DialogTest, CoversTheWholeWindowDimmed)
{
    EXPECT_TRUE(isLight());
    openAlert();
    EXPECT_TRUE(isDim());
    EXPECT_NEAR(light(QPoint(387, 397)), light(), 0.01);
}

TEST_F(DialogTest, FollowsTheSizeOfTheWindow)
{
    openAlert();
    stage.window().resize(420, 480);
    EXPECT_TRUE(QTest::qWaitFor([this] {
        const auto ok = stage.screen().find(u"OK"_s);
        return ok && qAbs(ok->rect.center().x() - 210) <= 1;
    }));
    EXPECT_NEAR(light(QPoint(417, 477)), light(), 0.01);
    EXPECT_TRUE(isDim());
}

TEST_F(DialogTest, ATapBelowReachesNothing)
{
    openAlert();
    click(middleOf("below"));
    click(QPoint(5, 5));
    EXPECT_EQ(count("taps"), 0);
    EXPECT_EQ(count("accepts"), 0); // and an alert wants its button
    EXPECT_TRUE(stage.screen().shows(u"OK"_s));
}

TEST_F(DialogTest, TheButtonIsHeardOnceHoweverOftenItIsTapped)
{
    openAlert();
    const QPoint ok = stage.screen().find(u"OK"_s)->rect.center();
    click(ok);
    click(ok);
    click(ok);
    EXPECT_EQ(count("accepts"), 1);
    EXPECT_TRUE(closes());
    click(ok);
    EXPECT_EQ(count("accepts"), 1);
}

TEST_F(DialogTest, ATapThatComesTooSoonIsNotForIt)
{
    show("alertShown");
    ASSERT_TRUE(stage.screen().waitFor(u"OK"_s));
    click(stage.screen().find(u"OK"_s)->rect.center());
    EXPECT_EQ(count("accepts"), 0);
    EXPECT_EQ(count("taps"), 0);
}

TEST_F(DialogTest, ATapThatComesTooSoonIsNotForItWithoutMotionEither)
{
    stage.theme().setReducedMotion(true);
    show("dialogShown");
    EXPECT_TRUE(isDim());
    click(QPoint(5, 5)); // the second half of a double click, beside it
    EXPECT_EQ(count("rejections"), 0);
    ASSERT_TRUE(stage.screen().waitUntilStill());
    click(QPoint(5, 5));
    EXPECT_EQ(count("rejections"), 1);
    EXPECT_TRUE(isLight());
}

TEST_F(DialogTest, APressThatBeganBelowLeadsNowhere)
{
    QTest::mousePress(&stage.window(), Qt::LeftButton, Qt::NoModifier, middleOf("below"));
    openAlert();
    QTest::mouseRelease(&stage.window(), Qt::LeftButton, Qt::NoModifier, middleOf("below"));
    EXPECT_EQ(count("taps"), 0);
}

TEST_F(DialogTest, ATouchThatBeganBelowLeadsNowhere)
{
    auto *finger = QTest::createTouchDevice();
    QTest::touchEvent(&stage.window(), finger).press(0, middleOf("below"));
    openAlert();
    QTest::touchEvent(&stage.window(), finger).release(0, middleOf("below"));
    EXPECT_EQ(count("taps"), 0);
}

TEST_F(DialogTest, TheWheelScrollsNothingBelow)
{
    const auto scrolled = [this] { return stage.part("list")->property("contentY").toReal(); };
    const auto scroll = [this] {
        QWheelEvent wheel({100, 250}, stage.window().mapToGlobal(QPointF(100, 250)), {}, {0, -240},
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&stage.window(), &wheel);
        QTest::qWait(100);
    };
    show("alertShown");
    scroll(); // while it opens
    ASSERT_TRUE(stage.screen().waitUntilStill());
    scroll();
    EXPECT_EQ(scrolled(), 0);
    show("alertShown", false);
    ASSERT_TRUE(closes());
    scroll();
    EXPECT_GT(scrolled(), 0);
}

TEST_F(DialogTest, TouchesStayAbove)
{
    openAlert();
    auto *finger = QTest::createTouchDevice();
    QTest::touchEvent(&stage.window(), finger).press(0, middleOf("below"));
    QTest::touchEvent(&stage.window(), finger).release(0, middleOf("below"));
    EXPECT_EQ(count("taps"), 0);
    QTest::touchEvent(&stage.window(), finger).press(0, stage.screen().find(u"OK"_s)->rect.center());
    QTest::touchEvent(&stage.window(), finger).release(0, stage.screen().find(u"OK"_s)->rect.center());
    EXPECT_EQ(count("accepts"), 1);
}

TEST_F(DialogTest, KeysAndShortcutsBelowDoNothing)
{
    openAlert();
    for (const auto key : {Qt::Key_A, Qt::Key_F5, Qt::Key_PageDown, Qt::Key_1})
        stage.screen().key(key);
    stage.screen().key(Qt::Key_R, Qt::ControlModifier);
    EXPECT_EQ(count("keys"), 0);
    EXPECT_EQ(stage.part("field")->property("text").toString(), QString());
    EXPECT_TRUE(stage.screen().shows(u"OK"_s));
}

TEST_F(DialogTest, TheShortcutBelowWorksAgainAfterwards)
{
    stage.screen().key(Qt::Key_F5);
    ASSERT_EQ(count("keys"), 1);
    openAlert();
    stage.screen().key(Qt::Key_Escape);
    ASSERT_TRUE(closes());
    stage.screen().key(Qt::Key_F5);
    EXPECT_EQ(count("keys"), 2);
}

TEST_F(DialogTest, TheAlertsButtonHasTheFocusAndReturnPressesIt)
{
    openAlert();
    EXPECT_EQ(focused(), u"OK"_s);
    stage.screen().key(Qt::Key_Return);
    EXPECT_EQ(count("accepts"), 1);
}

TEST_F(DialogTest, EscapeIsTheAlertsButton)
{
    openAlert();
    stage.screen().key(Qt::Key_Escape);
    EXPECT_EQ(count("accepts"), 1);
    stage.screen().key(Qt::Key_Escape); // and nothing more while it goes
    EXPECT_EQ(count("accepts"), 1);
}

TEST_F(DialogTest, ThePlatformsBackKeyIsTheAlertsButton)
{
    openAlert();
    stage.screen().key(Qt::Key_Back);
    EXPECT_EQ(count("accepts"), 1);
}

TEST_F(DialogTest, TheFocusReturnsToWhereItWas)
{
    stage.part("field")->forceActiveFocus();
    const QPointer<QQuickItem> before = stage.window().activeFocusItem();
    openAlert();
    ASSERT_NE(stage.window().activeFocusItem(), before);
    stage.screen().key(Qt::Key_Return);
    EXPECT_EQ(stage.window().activeFocusItem(), before);
    stage.screen().typeText(u"x"_s); // at once, while it goes
    EXPECT_EQ(stage.part("field")->property("text").toString(), u"x"_s);
}

TEST_F(DialogTest, AFocusThatMovedElsewhereIsLeftAlone)
{
    openAlert();
    stage.part("below")->forceActiveFocus();
    show("alertShown", false);
    EXPECT_EQ(focused(), u"Below"_s);
}

TEST_F(DialogTest, AFocusThatStraysBelowIsFetchedByTheNextKey)
{
    openAlert();
    stage.part("field")->forceActiveFocus();
    QTest::qWait(0);
    stage.screen().key(Qt::Key_X);
    EXPECT_EQ(stage.part("field")->property("text").toString(), QString());
}

TEST_F(DialogTest, TabStaysInside)
{
    openDialog();
    EXPECT_EQ(focused(), u"Cancel"_s);
    QStringList visited;
    for (int presses = 0; presses < 4; ++presses) {
        stage.screen().key(Qt::Key_Tab);
        visited.append(focused());
    }
    EXPECT_EQ(visited, (QStringList{u"Do it"_s, u"Cancel"_s, u"Do it"_s, u"Cancel"_s}));
    stage.screen().key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(focused(), u"Do it"_s);
}

TEST_F(DialogTest, TabInAnAlertStaysAtItsOnlyButton)
{
    openAlert();
    stage.screen().key(Qt::Key_Tab);
    EXPECT_EQ(focused(), u"OK"_s);
    stage.screen().key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(focused(), u"OK"_s);
}

TEST_F(DialogTest, WhatLiesBelowIsNotOffered)
{
    openAlert();
    EXPECT_FALSE(stage.screen().shows(u"Below"_s));
    EXPECT_FALSE(stage.screen().shows(u"Field"_s));
    show("alertShown", false);
    EXPECT_TRUE(stage.screen().shows(u"Below"_s)); // as soon as it goes
}

TEST_F(DialogTest, IsAModalDialogWithItsWords)
{
    openAlert();
    const auto element = stage.screen().find(u"It is done"_s, QAccessible::Dialog);
    ASSERT_TRUE(element) << stage.screen().dump().toStdString();
    EXPECT_TRUE(element->state.modal);
    EXPECT_TRUE(stage.screen().find(u"It is done"_s, QAccessible::AlertMessage));
    EXPECT_TRUE(stage.screen().find(u"You can go on."_s, QAccessible::AlertMessage));
    EXPECT_TRUE(stage.screen().find(u"OK"_s, QAccessible::Button));
    auto *interface = QAccessible::queryAccessibleInterface(element->object);
    for (int index = 0; index < interface->childCount(); ++index)
        EXPECT_EQ(interface->indexOfChild(interface->child(index)), index);
    const QPoint ok = interface->child(interface->childCount() - 1)->rect().center();
    EXPECT_EQ(interface->childAt(ok.x(), ok.y())->text(QAccessible::Name), u"OK"_s);
    EXPECT_TRUE(stage.screen().find(u"OK"_s)->state.focused);
}

TEST_F(DialogTest, TheOneOpenedLastIsOnTop)
{
    openDialog();
    openAlert();
    EXPECT_FALSE(stage.screen().shows(u"Do it"_s));
    stage.screen().key(Qt::Key_Escape);
    EXPECT_EQ(count("accepts"), 1);
    EXPECT_EQ(count("rejections"), 0);
    ASSERT_TRUE(stage.screen().waitUntilStill());
    EXPECT_EQ(focused(), u"Cancel"_s);
    stage.screen().key(Qt::Key_Escape);
    EXPECT_EQ(count("rejections"), 1);
}

TEST_F(DialogTest, ADialogIsCancelledByItsButtonEscapeAndATapBeside)
{
    openDialog();
    ASSERT_TRUE(stage.screen().click(u"Cancel"_s));
    EXPECT_EQ(count("rejections"), 1);
    ASSERT_TRUE(closes());
    openDialog();
    stage.screen().key(Qt::Key_Back);
    EXPECT_EQ(count("rejections"), 2);
    ASSERT_TRUE(closes());
    openDialog();
    click(QPoint(195, 40));
    EXPECT_EQ(count("rejections"), 3);
    EXPECT_EQ(count("accepts"), 0);
}

TEST_F(DialogTest, StandsInsideTheWindow)
{
    for (const QSize size : {QSize(390, 400), QSize(320, 480), QSize(768, 1024)}) {
        stage.window().resize(size);
        openDialog();
        const QRect cancel = stage.screen().find(u"Cancel"_s)->rect;
        EXPECT_NEAR(size.height() - cancel.bottom() - 1, 8, 1);
        EXPECT_NEAR(cancel.center().x(), size.width() / 2.0, 1);
        EXPECT_TRUE(QRect(QPoint(), size).contains(stage.screen().find(u"Do it"_s)->rect));
        stage.screen().key(Qt::Key_Escape);
        ASSERT_TRUE(closes());
    }
}

TEST_F(DialogTest, WhoComesByKeyboardSeesTheRingInsideAndOutside)
{
    stage.screen().key(Qt::Key_Tab);
    ASSERT_EQ(focused(), u"Below"_s);
    openAlert();
    EXPECT_TRUE(stage.window().activeFocusItem()->property("visualFocus").toBool());
    stage.screen().key(Qt::Key_Return);
    EXPECT_EQ(focused(), u"Below"_s);
    EXPECT_TRUE(stage.window().activeFocusItem()->property("visualFocus").toBool());
}

TEST_F(DialogTest, ATapOnTheWordsOfADialogIsNoAnswer)
{
    openDialog();
    click(stage.screen().find(u"Really?"_s, QAccessible::AlertMessage)->rect.center());
    EXPECT_EQ(count("rejections"), 0);
    EXPECT_EQ(count("accepts"), 0);
    ASSERT_TRUE(stage.screen().click(u"Do it"_s));
    EXPECT_EQ(count("accepts"), 1);
}

TEST_F(DialogTest, APressThatLeavesThePanelIsNoTapBeside)
{
    openDialog();
    const QPoint words = stage.screen().find(u"Really?"_s, QAccessible::AlertMessage)->rect.center();
    QTest::mousePress(&stage.window(), Qt::LeftButton, Qt::NoModifier, words);
    QTest::mouseMove(&stage.window(), QPoint(195, 40));
    QTest::mouseRelease(&stage.window(), Qt::LeftButton, Qt::NoModifier, QPoint(195, 40));
    EXPECT_EQ(count("rejections"), 0);
}

TEST_F(DialogTest, OpenedAgainWhileItCloses)
{
    openAlert();
    show("alertShown", false);
    QTest::qWait(40);
    openAlert();
    EXPECT_TRUE(isDim());
    EXPECT_TRUE(stage.screen().shows(u"OK"_s));
    stage.screen().key(Qt::Key_Return);
    EXPECT_EQ(count("accepts"), 1);
    EXPECT_TRUE(closes());
}

TEST_F(DialogTest, ClosedInTheMiddleOfOpening)
{
    show("alertShown");
    QTest::qWait(40);
    show("alertShown", false);
    EXPECT_TRUE(closes());
    EXPECT_TRUE(stage.screen().shows(u"Below"_s));
    click(middleOf("below"));
    EXPECT_EQ(count("taps"), 1);
}

TEST_F(DialogTest, ReducedMotionOpensAndClosesAtOnce)
{
    stage.theme().setReducedMotion(true);
    show("alertShown");
    EXPECT_TRUE(isDim());
    EXPECT_TRUE(stage.screen().shows(u"OK"_s));
    show("alertShown", false);
    EXPECT_TRUE(isLight());
    EXPECT_FALSE(stage.screen().shows(u"OK"_s));
}

TEST_F(DialogTest, AWindowThatIsTooLowScrollsTheWords)
{
    stage.window().resize(320, 200);
    stage.item()->setProperty("message", QString(u"A long message that says a great deal. "_s).repeated(20));
    show("alertShown");
    ASSERT_TRUE(stage.screen().waitFor(u"OK"_s));
    ASSERT_TRUE(stage.screen().waitUntilStill());
    const auto ok = stage.screen().find(u"OK"_s);
    ASSERT_TRUE(ok);
    EXPECT_LE(ok->rect.bottom(), 200);
    ASSERT_TRUE(stage.screen().click(u"OK"_s));
    EXPECT_EQ(count("accepts"), 1);
}

TEST(DialogOnStackTest, FillsTheOutermostScreenAndGoesWithIt)
{
    ComponentStage stage(StackDriver::qml(R"(
        x: -20; y: -20; width: 390; height: 400
        initialItem: Component { Item {
            property alias open: inner.shown
            PrimaryButton { width: 350; y: 340; title: "Tab" }
            NavigationStack {
                width: 350; height: 200
                initialItem: Item {
                    Alert { id: inner; title: "Wait"; button: "OK" }
                }
            }
        } }
    )"));
    StackDriver stack(stage.item());
    const qreal light = stage.shot().pixelColor(3, 397).lightnessF();
    stack.currentItem()->setProperty("open", true);
    ASSERT_TRUE(stage.screen().waitFor(u"OK"_s));
    ASSERT_TRUE(stage.screen().waitUntilStill());
    EXPECT_LT(stage.shot().pixelColor(3, 397).lightnessF(), 0.5 * light);
    EXPECT_NEAR(stage.screen().find(u"Wait"_s, QAccessible::AlertMessage)->rect.center().x(), 195, 1);
    EXPECT_FALSE(stage.screen().shows(u"Tab"_s));

    QTemporaryDir files;
    const QUrl next = writeScreen(files.filePath(u"Next.qml"_s),
                                  "FocusScope { QorField { width: 300; focus: true; label: \"Next\" } }");
    stack.replace(next, {}, true);
    EXPECT_TRUE(stage.screen().shows(u"Next"_s)); // no longer covered, while the other fades
    stage.screen().typeText(u"a"_s);
    stage.screen().key(Qt::Key_Escape);
    EXPECT_EQ(stage.screen().find(u"Next"_s)->object->property("text").toString(), u"a"_s);
    ASSERT_TRUE(stage.screen().waitUntilStill());
    EXPECT_FALSE(stage.screen().shows(u"OK"_s));
    EXPECT_TRUE(QTest::qWaitFor([&] { return stage.shot().pixelColor(3, 397).lightnessF() > 0.95 * light; }));
    stage.screen().typeText(u"b"_s);
    EXPECT_EQ(stage.screen().find(u"Next"_s)->object->property("text").toString(), u"ab"_s);
}

TEST(DialogOnStackTest, ShownFromTheBeginningItOpensOnceItIsThere)
{
    ComponentStage stage(
        R"(Item { width: 350; height: 300; Alert { shown: true; title: "Now"; button: "OK" } })");
    EXPECT_TRUE(stage.screen().waitFor(u"OK"_s));
}

TEST(DialogOnStackTest, ShownBeforeItHasAWindowItOpensInTheOneItGets)
{
    ComponentStage stage(R"(Item {
        width: 350; height: 300
        property Item unseen: Item { property alias open: late.shown; Alert { id: late; title: "Now"; button: "OK" } }
    })");
    auto *unseen = stage.item()->property("unseen").value<QQuickItem *>();
    unseen->setParentItem(nullptr);
    unseen->setProperty("open", true);
    QTest::qWait(50);
    EXPECT_FALSE(stage.screen().shows(u"OK"_s));
    unseen->setParentItem(stage.item());
    EXPECT_TRUE(stage.screen().waitFor(u"OK"_s));
}

} // namespace
} // namespace clockwell::test
