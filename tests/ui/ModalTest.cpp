#include "ui/Modal.h"

#include "ComponentStage.h"
#include "ui/ScreenStack.h"
#include "ui/Theme.h"

#include <QFile>
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
    property int dismissals: 0
    property bool alertShown: false
    property bool dialogShown: false
    width: 350; height: 360; focus: true
    Keys.onPressed: event => { ++keys; event.accepted = true }
    Shortcut { sequences: ["F5"]; onActivated: ++page.keys }
    PrimaryButton { objectName: "below"; y: 300; width: 350; title: "Below"; onTriggered: ++page.taps }
    QorField { objectName: "field"; y: 200; width: 350; label: "Field"; focus: true }
    Alert {
        objectName: "alert"
        shown: page.alertShown
        title: "It is done"; message: "You can go on."; button: "OK"
        onAccepted: { ++page.accepts; page.alertShown = false }
    }
    ConfirmationDialog {
        objectName: "dialog"
        shown: page.dialogShown
        title: "Really?"; action: "Do it"; destructive: true
        onAccepted: { ++page.accepts; page.dialogShown = false }
        onDismissed: { ++page.dismissals; page.dialogShown = false }
    }
})";

class ModalTest : public ::testing::Test
{
protected:
    ModalTest()
    {
        // The alert is no longer below its page once it has opened, so that both are kept from the beginning.
        alert = qobject_cast<Modal *>(stage.part("alert"));
        dialog = qobject_cast<Modal *>(stage.part("dialog"));
    }

    void show(const char *flag, bool shown = true) { stage.item()->setProperty(flag, shown); }
    void openAlert()
    {
        show("alertShown");
        ASSERT_TRUE(stage.screen().waitFor(u"You can go on."_s));
        ASSERT_TRUE(stage.screen().waitUntilStill());
    }
    void openDialog()
    {
        show("dialogShown");
        ASSERT_TRUE(stage.screen().waitFor(u"Do it"_s));
        ASSERT_TRUE(stage.screen().waitUntilStill());
    }
    int count(const char *property) const { return stage.item()->property(property).toInt(); }
    bool closes(const Modal *modal) const
    {
        return QTest::qWaitFor([modal] { return !modal->isVisible(); });
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
    Modal *alert = nullptr;
    Modal *dialog = nullptr;
};

TEST_F(ModalTest, CostsNothingWhileItIsClosed)
{
    EXPECT_FALSE(alert->isVisible());
    EXPECT_FALSE(stage.screen().shows(u"OK"_s));
    EXPECT_TRUE(stage.screen().shows(u"Below"_s));
    EXPECT_FALSE(Modal::covers(stage.part("below")));
}

TEST_F(ModalTest, CoversTheWholeWindowDimmed)
{
    const QColor before = stage.shot().pixelColor(3, 3);
    openAlert();
    EXPECT_EQ(alert->mapRectToScene(alert->boundingRect()), QRectF(0, 0, 390, 400));
    const QColor after = stage.shot().pixelColor(3, 3);
    EXPECT_LT(after.lightness(), before.lightness());
    EXPECT_GT(after.alpha(), 0);
}

TEST_F(ModalTest, FollowsTheSizeOfTheWindow)
{
    openAlert();
    stage.window().resize(320, 480);
    EXPECT_TRUE(QTest::qWaitFor([this] { return alert->size() == QSizeF(320, 480); }));
}

TEST_F(ModalTest, ATapBelowReachesNothing)
{
    openAlert();
    click(middleOf("below"));
    click(QPoint(5, 5));
    EXPECT_EQ(count("taps"), 0);
    EXPECT_EQ(count("accepts"), 0); // and an alert wants its button
    EXPECT_TRUE(alert->isVisible());
}

TEST_F(ModalTest, TheButtonIsHeardOnceHoweverOftenItIsTapped)
{
    openAlert();
    const QPoint ok = stage.screen().find(u"OK"_s)->rect.center();
    click(ok);
    click(ok);
    click(ok);
    EXPECT_EQ(count("accepts"), 1);
    EXPECT_TRUE(closes(alert));
    click(ok);
    EXPECT_EQ(count("accepts"), 1);
}

TEST_F(ModalTest, ATapThatComesTooSoonIsNotForIt)
{
    show("alertShown");
    ASSERT_TRUE(stage.screen().waitFor(u"OK"_s));
    click(stage.screen().find(u"OK"_s)->rect.center());
    EXPECT_EQ(count("accepts"), 0);
    EXPECT_EQ(count("taps"), 0);
}

TEST_F(ModalTest, ATapThatComesTooSoonIsNotForItWithoutMotionEither)
{
    stage.theme().setReducedMotion(true);
    show("dialogShown");
    EXPECT_EQ(dialog->openness(), 1);
    EXPECT_TRUE(dialog->isBusy());
    click(QPoint(5, 5)); // the second half of a double click, beside it
    EXPECT_EQ(count("dismissals"), 0);
    ASSERT_TRUE(stage.screen().waitUntilStill());
    click(QPoint(5, 5));
    EXPECT_EQ(count("dismissals"), 1);
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(ModalTest, APressThatBeganBelowLeadsNowhere)
{
    QTest::mousePress(&stage.window(), Qt::LeftButton, Qt::NoModifier, middleOf("below"));
    openAlert();
    QTest::mouseRelease(&stage.window(), Qt::LeftButton, Qt::NoModifier, middleOf("below"));
    EXPECT_EQ(count("taps"), 0);
}

TEST_F(ModalTest, TheWheelAndTouchesStayAbove)
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

TEST_F(ModalTest, KeysAndShortcutsBelowDoNothing)
{
    openAlert();
    for (const auto key : {Qt::Key_A, Qt::Key_F5, Qt::Key_PageDown, Qt::Key_1})
        stage.screen().key(key);
    stage.screen().key(Qt::Key_R, Qt::ControlModifier);
    EXPECT_EQ(count("keys"), 0);
    EXPECT_EQ(stage.part("field")->property("text").toString(), QString());
    EXPECT_TRUE(alert->isVisible());
}

TEST_F(ModalTest, TheShortcutBelowWorksAgainAfterwards)
{
    stage.screen().key(Qt::Key_F5);
    ASSERT_EQ(count("keys"), 1);
    openAlert();
    stage.screen().key(Qt::Key_Escape);
    ASSERT_TRUE(closes(alert));
    stage.screen().key(Qt::Key_F5);
    EXPECT_EQ(count("keys"), 2);
}

TEST_F(ModalTest, TheAlertsButtonHasTheFocusAndReturnPressesIt)
{
    openAlert();
    EXPECT_EQ(focused(), u"OK"_s);
    stage.screen().key(Qt::Key_Return);
    EXPECT_EQ(count("accepts"), 1);
}

TEST_F(ModalTest, EscapeIsTheAlertsButton)
{
    openAlert();
    stage.screen().key(Qt::Key_Escape);
    EXPECT_EQ(count("accepts"), 1);
    stage.screen().key(Qt::Key_Escape); // and nothing more while it goes
    EXPECT_EQ(count("accepts"), 1);
}

TEST_F(ModalTest, ThePlatformsBackKeyIsTheAlertsButton)
{
    openAlert();
    stage.screen().key(Qt::Key_Back);
    EXPECT_EQ(count("accepts"), 1);
}

TEST_F(ModalTest, TheFocusReturnsToWhereItWas)
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

TEST_F(ModalTest, AFocusThatMovedElsewhereIsLeftAlone)
{
    openAlert();
    stage.part("below")->forceActiveFocus();
    show("alertShown", false);
    EXPECT_EQ(focused(), u"Below"_s);
}

TEST_F(ModalTest, AFocusThatStraysBelowIsFetchedByTheNextKey)
{
    openAlert();
    stage.part("field")->forceActiveFocus();
    stage.screen().key(Qt::Key_X);
    EXPECT_EQ(stage.part("field")->property("text").toString(), QString());
}

TEST_F(ModalTest, TabStaysInside)
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

TEST_F(ModalTest, TabInAnAlertStaysAtItsOnlyButton)
{
    openAlert();
    stage.screen().key(Qt::Key_Tab);
    EXPECT_EQ(focused(), u"OK"_s);
    stage.screen().key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(focused(), u"OK"_s);
}

TEST_F(ModalTest, WhatLiesBelowIsNotOffered)
{
    openAlert();
    EXPECT_FALSE(stage.screen().shows(u"Below"_s));
    EXPECT_FALSE(stage.screen().shows(u"Field"_s));
    show("alertShown", false);
    EXPECT_TRUE(stage.screen().shows(u"Below"_s)); // as soon as it goes
}

TEST_F(ModalTest, IsAModalDialogWithItsWords)
{
    openAlert();
    const auto element = stage.screen().find(u"It is done"_s, QAccessible::Dialog);
    ASSERT_TRUE(element);
    EXPECT_TRUE(element->state.modal);
    EXPECT_TRUE(stage.screen().find(u"It is done"_s, QAccessible::AlertMessage));
    EXPECT_TRUE(stage.screen().find(u"You can go on."_s, QAccessible::AlertMessage));
    EXPECT_TRUE(stage.screen().find(u"OK"_s, QAccessible::Button));
    auto *interface = QAccessible::queryAccessibleInterface(alert);
    for (int index = 0; index < interface->childCount(); ++index)
        EXPECT_EQ(interface->indexOfChild(interface->child(index)), index);
    const QPoint ok = interface->child(interface->childCount() - 1)->rect().center();
    EXPECT_EQ(interface->childAt(ok.x(), ok.y())->text(QAccessible::Name), u"OK"_s);
    EXPECT_EQ(interface->focusChild()->text(QAccessible::Name), u"OK"_s);
}

TEST_F(ModalTest, TheOneOpenedLastIsOnTop)
{
    openDialog();
    openAlert();
    EXPECT_FALSE(stage.screen().shows(u"Do it"_s));
    stage.screen().key(Qt::Key_Escape);
    EXPECT_EQ(count("accepts"), 1);
    EXPECT_EQ(count("dismissals"), 0);
    ASSERT_TRUE(closes(alert));
    EXPECT_EQ(focused(), u"Cancel"_s);
    stage.screen().key(Qt::Key_Escape);
    EXPECT_EQ(count("dismissals"), 1);
}

TEST_F(ModalTest, ADialogIsCancelledByItsButtonEscapeAndATapBeside)
{
    openDialog();
    ASSERT_TRUE(stage.screen().click(u"Cancel"_s));
    EXPECT_EQ(count("dismissals"), 1);
    ASSERT_TRUE(closes(dialog));
    openDialog();
    stage.screen().key(Qt::Key_Back);
    EXPECT_EQ(count("dismissals"), 2);
    ASSERT_TRUE(closes(dialog));
    openDialog();
    click(QPoint(195, 40));
    EXPECT_EQ(count("dismissals"), 3);
    EXPECT_EQ(count("accepts"), 0);
}

TEST_F(ModalTest, ATapOnTheWordsOfADialogIsNoAnswer)
{
    openDialog();
    click(stage.screen().find(u"Really?"_s, QAccessible::AlertMessage)->rect.center());
    EXPECT_EQ(count("dismissals"), 0);
    EXPECT_EQ(count("accepts"), 0);
    ASSERT_TRUE(stage.screen().click(u"Do it"_s));
    EXPECT_EQ(count("accepts"), 1);
}

TEST_F(ModalTest, APressThatLeavesThePanelIsNoTapBeside)
{
    openDialog();
    const QPoint words = stage.screen().find(u"Really?"_s, QAccessible::AlertMessage)->rect.center();
    QTest::mousePress(&stage.window(), Qt::LeftButton, Qt::NoModifier, words);
    QTest::mouseMove(&stage.window(), QPoint(195, 40));
    QTest::mouseRelease(&stage.window(), Qt::LeftButton, Qt::NoModifier, QPoint(195, 40));
    EXPECT_EQ(count("dismissals"), 0);
}

TEST_F(ModalTest, OpenedAgainWhileItCloses)
{
    openAlert();
    show("alertShown", false);
    QTest::qWait(40);
    openAlert();
    EXPECT_EQ(alert->openness(), 1);
    EXPECT_TRUE(alert->isVisible());
    stage.screen().key(Qt::Key_Return);
    EXPECT_EQ(count("accepts"), 1);
    EXPECT_TRUE(closes(alert));
}

TEST_F(ModalTest, ClosedInTheMiddleOfOpening)
{
    show("alertShown");
    QTest::qWait(40);
    show("alertShown", false);
    EXPECT_TRUE(closes(alert));
    EXPECT_EQ(alert->openness(), 0);
    EXPECT_FALSE(alert->isBusy());
    EXPECT_TRUE(stage.screen().shows(u"Below"_s));
}

TEST_F(ModalTest, ReducedMotionOpensAndClosesAtOnce)
{
    stage.theme().setReducedMotion(true);
    show("alertShown");
    EXPECT_EQ(alert->openness(), 1);
    show("alertShown", false);
    EXPECT_EQ(alert->openness(), 0);
    EXPECT_FALSE(alert->isVisible());
}

TEST_F(ModalTest, AWindowThatIsTooLowScrollsTheWords)
{
    stage.window().resize(320, 200);
    alert->setProperty("message", QString(u"A long message that says a great deal. "_s).repeated(20));
    show("alertShown");
    ASSERT_TRUE(stage.screen().waitFor(u"OK"_s));
    ASSERT_TRUE(stage.screen().waitUntilStill());
    const auto ok = stage.screen().find(u"OK"_s);
    ASSERT_TRUE(ok);
    EXPECT_LE(ok->rect.bottom(), 200);
    ASSERT_TRUE(stage.screen().click(u"OK"_s));
    EXPECT_EQ(count("accepts"), 1);
}

TEST(ModalOnStackTest, FillsTheOutermostScreenAndGoesWithIt)
{
    ComponentStage stage(R"(ScreenStack {
        id: outer; width: 350; height: 300; duration: 100
        property int below: 0
        initialItem: Item {
            property alias open: inner.shown
            objectName: "main"
            PrimaryButton { width: 350; y: 240; title: "Tab" }
            ScreenStack {
                width: 350; height: 200
                initialItem: Item {
                    Alert { id: inner; objectName: "alert"; title: "Wait"; button: "OK" }
                }
            }
        }
    })");
    auto *stack = qobject_cast<ScreenStack *>(stage.item());
    QQuickItem *main = stack->currentItem();
    const QPointer<Modal> alert = qobject_cast<Modal *>(stage.part("alert"));
    main->setProperty("open", true);
    ASSERT_TRUE(stage.screen().waitFor(u"OK"_s));
    EXPECT_EQ(alert->parentItem(), main);
    EXPECT_EQ(alert->size(), QSizeF(350, 300));
    EXPECT_FALSE(stage.screen().shows(u"Tab"_s));

    QTemporaryDir files;
    QFile file(files.filePath(u"Next.qml"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("import QtQuick\nimport Clockwell.Ui\n"
               "FocusScope { QorField { width: 300; focus: true; label: \"Next\" } }");
    file.close();
    stack->replace(QUrl::fromLocalFile(file.fileName()), {}, true);
    EXPECT_TRUE(stage.screen().shows(u"Next"_s)); // no longer covered, while the other fades
    stage.screen().typeText(u"a"_s);
    stage.screen().key(Qt::Key_Escape);
    EXPECT_EQ(stage.screen().find(u"Next"_s)->object->property("text").toString(), u"a"_s);
    EXPECT_TRUE(QTest::qWaitFor([&] { return alert.isNull(); }));
    stage.screen().typeText(u"b"_s);
    EXPECT_EQ(stage.screen().find(u"Next"_s)->object->property("text").toString(), u"ab"_s);
}

TEST(ModalOnStackTest, ShownFromTheBeginningItOpensOnceItIsThere)
{
    ComponentStage stage(
        R"(Item { width: 350; height: 300; Alert { shown: true; title: "Now"; button: "OK" } })");
    EXPECT_TRUE(stage.screen().waitFor(u"OK"_s));
}

TEST(ModalOnStackTest, ShownBeforeItHasAWindowItOpensInTheOneItGets)
{
    ComponentStage stage(R"(Item {
        width: 350; height: 300
        property Item unseen: Item { Alert { objectName: "late"; title: "Now"; button: "OK" } }
    })");
    auto *unseen = stage.item()->property("unseen").value<QQuickItem *>();
    unseen->setParentItem(nullptr);
    unseen->findChild<Modal *>(u"late"_s)->setShown(true);
    QTest::qWait(50);
    EXPECT_FALSE(stage.screen().shows(u"OK"_s));
    unseen->setParentItem(stage.item());
    EXPECT_TRUE(stage.screen().waitFor(u"OK"_s));
}

} // namespace
} // namespace clockwell::test
