#include "EditMenuStage.h"
#include "ui/Theme.h"

#include <QSignalSpy>

using namespace Qt::StringLiterals;

namespace clockwell::test {
namespace {

const auto cut = u"Cut"_s;
const auto copied = u"Copy"_s;
const auto paste = u"Paste"_s;
const auto all = u"Select all"_s;

class EditMenuTest : public EditMenuStage
{};

/// How many items there are with this text, seen or not.
int drawnIn(const QQuickItem &item, const QString &text)
{
    int count = item.inherits("QQuickText") && item.property("text").toString() == text ? 1 : 0;
    for (const QQuickItem *child : item.childItems())
        count += drawnIn(*child, text);
    return count;
}

// How it opens.

TEST_F(EditMenuTest, OpensByALongPressOfAFinger)
{
    longPress(at());
    EXPECT_EQ(offered(), QStringList(paste));
    EXPECT_TRUE(input()->hasActiveFocus());
}

TEST_F(EditMenuTest, OpensByALongPressOfTheLeftMouseButton)
{
    longPressByMouse(at());
    EXPECT_EQ(offered(), QStringList(paste));
}

TEST_F(EditMenuTest, OpensWhileTheFingerIsStillDown)
{
    touch(at());
    waitForTheMenu();
    EXPECT_TRUE(isOpen());
    lift(at());
    EXPECT_TRUE(isOpen());
}

TEST_F(EditMenuTest, OpensByARightClick)
{
    click(at(), Qt::RightButton);
    EXPECT_EQ(offered(), QStringList(paste));
    EXPECT_TRUE(input()->hasActiveFocus());
}

TEST_F(EditMenuTest, LeavesTheMiddleButtonToTheField)
{
    setText(u"hello"_s);
    input()->setAcceptedMouseButtons(Qt::LeftButton | Qt::MiddleButton | Qt::RightButton); // as under X11
    click(at(2), Qt::MiddleButton);
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuTest, OpensByTheMenuKey)
{
    field()->forceActiveFocus();
    key(Qt::Key_Menu);
    EXPECT_EQ(offered(), QStringList(paste));
}

TEST_F(EditMenuTest, OpensByShiftF10)
{
    field()->forceActiveFocus();
    key(Qt::Key_F10);
    EXPECT_FALSE(isOpen());
    key(Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_EQ(offered(), QStringList(paste));
}

TEST_F(EditMenuTest, TheLengthOfALongPressIsThePlatforms)
{
    makeLongPressesLong();
    touch(at());
    QTest::qWait(hold + 100);
    EXPECT_FALSE(isOpen());
    EXPECT_TRUE(QTest::qWaitFor([this] { return isOpen(); }, 5000));
    lift(at());
}

TEST_F(EditMenuTest, AShortTapOpensNothingAndPutsTheCursor)
{
    setText(u"hello world"_s);
    tap(at(3) + QPoint(-3, 0));
    QTest::qWait(hold + 100);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(cursor(), 3);
    EXPECT_EQ(selected(), QString());
    EXPECT_TRUE(input()->hasActiveFocus());
}

TEST_F(EditMenuTest, ADragByTheMouseSelectsAndOpensNothing)
{
    makeLongPressesLong();
    setText(u"hello world"_s);
    QTest::mousePress(&stage.window(), Qt::LeftButton, Qt::NoModifier, at(0) + QPoint(-3, 0));
    for (int character = 2; character <= 5; ++character)
        QTest::mouseMove(&stage.window(), at(character) + QPoint(-3, 0), 20);
    QTest::qWait(longHold + 100);
    EXPECT_FALSE(isOpen());
    QTest::mouseRelease(&stage.window(), Qt::LeftButton, Qt::NoModifier, at(5) + QPoint(-3, 0));
    EXPECT_EQ(selected(), u"hello"_s);
}

TEST_F(EditMenuTest, ADoubleClickSelectsAWordAndOpensNothing)
{
    setText(u"hello world"_s);
    QTest::mouseDClick(&stage.window(), Qt::LeftButton, Qt::NoModifier, at(8));
    QTest::qWait(hold + 100);
    EXPECT_EQ(selected(), u"world"_s);
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuTest, CostsNothingBeforeItIsOpened)
{
    const auto parts = [this] { return field()->findChildren<QObject *>().size(); };
    const auto entries = [this] { return drawnIn(*stage.window().contentItem(), paste); };
    EXPECT_EQ(entries(), 0);
    QList<qsizetype> left;
    for (int time = 0; time < 2; ++time) {
        longPress(at());
        ASSERT_TRUE(isOpen());
        EXPECT_EQ(entries(), 1);
        key(Qt::Key_Escape);
        EXPECT_TRUE(QTest::qWaitFor([&] { return entries() == 0; }));
        QTest::qWait(20);
        left.append(parts());
    }
    EXPECT_EQ(left.first(), left.last());
}

// What it offers.

TEST_F(EditMenuTest, OffersEverythingForAPartThatIsSelected)
{
    setText(u"hello world"_s);
    select(0, 5);
    key(Qt::Key_Menu);
    EXPECT_EQ(offered(), QStringList({cut, copied, paste, all}));
}

TEST_F(EditMenuTest, OffersNoCutOrCopyWithoutASelection)
{
    setText(u"hello"_s);
    key(Qt::Key_Menu);
    EXPECT_EQ(offered(), QStringList({paste, all}));
}

TEST_F(EditMenuTest, OffersNoSelectAllOfWhatIsAllSelected)
{
    setText(u"hello"_s);
    select(0, 5);
    key(Qt::Key_Menu);
    EXPECT_EQ(offered(), QStringList({cut, copied, paste}));
}

TEST_F(EditMenuTest, OffersNoPasteWithoutTextOnTheClipboard)
{
    auto *picture = new QMimeData;
    picture->setImageData(QImage(2, 2, QImage::Format_RGB32));
    QGuiApplication::clipboard()->setMimeData(picture);
    setText(u"hello"_s);
    key(Qt::Key_Menu);
    EXPECT_EQ(offered(), QStringList(all));
}

TEST_F(EditMenuTest, OffersOnlyCopyAndSelectAllOfATextThatIsReadOnly)
{
    setText(u"hello world"_s);
    input()->setProperty("readOnly", true);
    select(0, 5);
    key(Qt::Key_Menu);
    EXPECT_EQ(offered(), QStringList({copied, all}));
}

TEST_F(EditMenuTest, OpensNothingWhereNothingMakesSense)
{
    QGuiApplication::clipboard()->clear();
    longPress(at());
    click(at(), Qt::RightButton);
    key(Qt::Key_Menu);
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuTest, OffersNoCutOrCopyOfAMaskedPassword)
{
    field()->setProperty("secure", true);
    setText(u"correct horse"_s);
    select(0, 7);
    key(Qt::Key_Menu);
    EXPECT_EQ(offered(), QStringList({paste, all}));
    key(Qt::Key_Escape);
    field()->setProperty("reveal", true);
    select(0, 7);
    key(Qt::Key_Menu);
    EXPECT_EQ(offered(), QStringList({cut, copied, paste, all}));
}

TEST_F(EditMenuTest, AMaskedPasswordTakesAwayWhatWasOfferedOfAShownOne)
{
    field()->setProperty("secure", true);
    field()->setProperty("reveal", true);
    setText(u"correct horse"_s);
    select(0, 7);
    key(Qt::Key_Menu);
    ASSERT_TRUE(isOpen());
    field()->setProperty("reveal", false);
    EXPECT_FALSE(isOpen());
}

// What a press selects.

TEST_F(EditMenuTest, ALongPressSelectsTheWord)
{
    setText(u"hello world"_s);
    longPress(at(10)); // its right half is nearer to the end of the text
    EXPECT_EQ(selected(), u"world"_s);
    EXPECT_EQ(offered(), QStringList({cut, copied, paste, all}));
    longPressByMouse(at(0));
    EXPECT_EQ(selected(), u"hello"_s);
}

TEST_F(EditMenuTest, ALongPressBehindTheTextPutsTheCursorThere)
{
    setText(u"hello"_s);
    select(0, 2);
    longPress(at() + QPoint(60, 0));
    EXPECT_EQ(selected(), QString());
    EXPECT_EQ(cursor(), 5);
    EXPECT_EQ(offered(), QStringList({paste, all}));
}

TEST_F(EditMenuTest, ALongPressBetweenWordsPutsTheCursorThere)
{
    setText(u"hello world"_s);
    longPress(at(5) + QPoint(-1, 0));
    EXPECT_EQ(selected(), QString());
    EXPECT_EQ(cursor(), 5);
}

TEST_F(EditMenuTest, ALongPressOnASelectionKeepsIt)
{
    setText(u"hello brave world"_s);
    select(2, 11);
    longPress(at(7));
    EXPECT_EQ(selected(), u"llo brave"_s);
}

TEST_F(EditMenuTest, ALongPressOnAMaskedTextTellsNothingOfItsWords)
{
    field()->setProperty("secure", true);
    setText(u"correct horse"_s);
    longPress(at(2));
    EXPECT_EQ(input()->property("selectionStart").toInt(), 0);
    EXPECT_EQ(input()->property("selectionEnd").toInt(), 13);
    EXPECT_EQ(offered(), QStringList(paste));
}

TEST_F(EditMenuTest, WhereTheFingerGoesAfterwardsChangesNothing)
{
    setText(u"hello world"_s);
    touch(at(1));
    QTest::qWait(hold + 100);
    drag(at(8));
    drag(at(8) + QPoint(0, 60));
    lift(at(8) + QPoint(0, 60));
    EXPECT_EQ(selected(), u"hello"_s);
    EXPECT_TRUE(isOpen());
}

TEST_F(EditMenuTest, WhereTheMouseGoesAfterwardsChangesNothing)
{
    setText(u"hello world"_s);
    QTest::mousePress(&stage.window(), Qt::LeftButton, Qt::NoModifier, at(1));
    QTest::qWait(hold + 100);
    for (const int character : {3, 6, 8})
        QTest::mouseMove(&stage.window(), at(character), 20);
    QTest::mouseRelease(&stage.window(), Qt::LeftButton, Qt::NoModifier, at(8));
    EXPECT_EQ(selected(), u"hello"_s);
    EXPECT_TRUE(isOpen());
    QTest::mousePress(&stage.window(), Qt::LeftButton, Qt::NoModifier, at(0) + QPoint(-3, 0));
    for (const int character : {1, 2, 3}) // and the next drag selects again
        QTest::mouseMove(&stage.window(), at(character) + QPoint(-3, 0), 20);
    QTest::mouseRelease(&stage.window(), Qt::LeftButton, Qt::NoModifier, at(3) + QPoint(-3, 0));
    EXPECT_EQ(selected(), u"hel"_s);
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuTest, ARightClickOnASelectionKeepsItAndElsewherePutsTheCursor)
{
    setText(u"hello brave world"_s);
    select(6, 11);
    click(at(7), Qt::RightButton);
    EXPECT_EQ(selected(), u"brave"_s);
    click(at(1) + QPoint(-1, 0), Qt::RightButton);
    EXPECT_EQ(selected(), QString());
    EXPECT_EQ(cursor(), 1);
    EXPECT_EQ(offered(), QStringList({paste, all}));
}

// What its entries do.

TEST_F(EditMenuTest, CutTakesTheSelectionAway)
{
    setText(u"hello world"_s);
    longPress(at(1));
    tap(entry(cut));
    EXPECT_EQ(text(), u" world"_s);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"hello"_s);
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuTest, CopyLeavesTheTextAndTheSelection)
{
    setText(u"hello world"_s);
    longPress(at(1));
    tap(entry(copied));
    EXPECT_EQ(text(), u"hello world"_s);
    EXPECT_EQ(selected(), u"hello"_s);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"hello"_s);
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuTest, PasteReplacesTheSelectionInOneEdit)
{
    setText(u"hello world"_s);
    longPress(at(1));
    const int before = count("edits");
    tap(entry(paste));
    EXPECT_EQ(text(), u"copied world"_s);
    EXPECT_EQ(count("edits"), before + 1);
    EXPECT_EQ(cursor(), 6);
    EXPECT_EQ(selected(), QString());
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuTest, PasteIsUndoneAtOnce)
{
    setText(u"hello world"_s);
    select(0, 5);
    key(Qt::Key_Menu);
    click(entry(paste));
    ASSERT_EQ(text(), u"copied world"_s);
    QTest::keySequence(&stage.window(), QKeySequence::Undo);
    EXPECT_EQ(text(), u"hello world"_s);
}

TEST_F(EditMenuTest, PasteIsUndoneOnItsOwn)
{
    ASSERT_TRUE(stage.screen().type(u"Field"_s, u"ab"_s));
    QTest::keySequence(&stage.window(), QKeySequence::Paste);
    stage.screen().typeText(u"c"_s);
    ASSERT_EQ(text(), u"abcopiedc"_s);
    for (const auto &left : {u"abcopied"_s, u"ab"_s, QString()}) {
        QTest::keySequence(&stage.window(), QKeySequence::Undo);
        EXPECT_EQ(text(), left);
    }
}

TEST_F(EditMenuTest, SelectAllSelectsAll)
{
    setText(u"hello world"_s);
    longPress(at());
    click(entry(all));
    EXPECT_EQ(selected(), u"hello world"_s);
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuTest, LineBreaksDoNotBreakTheLine)
{
    copy(u"\r\nada@example.org\n"_s);
    longPress(at());
    tap(entry(paste));
    EXPECT_EQ(text(), u"ada@example.org"_s);
    setText(QString());
    copy(u"Ada\r\nByron"_s);
    QTest::keySequence(&stage.window(), QKeySequence::Paste); // by the keyboard it is the same
    EXPECT_EQ(text(), u"Ada Byron"_s);
}

TEST_F(EditMenuTest, NothingButLineBreaksLeavesEverythingAsItIs)
{
    copy(u"\n"_s);
    setText(u"hello"_s);
    select(0, 5);
    key(Qt::Key_Menu);
    tap(entry(paste));
    EXPECT_EQ(text(), u"hello"_s);
}

TEST_F(EditMenuTest, PasteTakesNoMoreThanTheFieldHolds)
{
    field()->setProperty("maximumLength", 6);
    setText(u"1234"_s);
    select(1, 2);
    copy(u"abcdef"_s);
    key(Qt::Key_Menu);
    tap(entry(paste));
    EXPECT_EQ(text(), u"1abc34"_s);
    EXPECT_EQ(cursor(), 4);
}

TEST_F(EditMenuTest, PasteEndsWhatIsBeingComposed)
{
    field()->forceActiveFocus();
    QInputMethodEvent composing(u"draft"_s, {});
    QGuiApplication::sendEvent(input(), &composing);
    longPress(at());
    ASSERT_TRUE(isOpen());
    tap(entry(paste));
    EXPECT_TRUE(text().contains(u"copied"_s));
    EXPECT_EQ(input()->property("preeditText").toString(), QString());
}

// The field keeps the focus.

TEST_F(EditMenuTest, TheFieldKeepsTheFocusAllTheTime)
{
    field()->forceActiveFocus();
    setText(u"hello world"_s);
    const QSignalSpy changes(&stage.window(), &QQuickWindow::activeFocusItemChanged);
    longPress(at(1));
    tap(entry(copied));
    longPress(at(1));
    key(Qt::Key_Right);
    key(Qt::Key_Escape);
    longPress(at(1));
    tap(entry(paste));
    EXPECT_EQ(changes.count(), 0);
}

// By the keyboard.

TEST_F(EditMenuTest, TheKeyboardReachesTheFirstEntryAtOnce)
{
    setText(u"hello"_s);
    key(Qt::Key_Menu);
    EXPECT_EQ(reached(), paste);
    key(Qt::Key_Return);
    EXPECT_EQ(text(), u"hellocopied"_s);
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuTest, ArrowsAndTabGoThroughTheEntriesAndAround)
{
    setText(u"hello world"_s);
    select(0, 5);
    key(Qt::Key_Menu);
    QStringList order{reached()};
    for (const auto next : {Qt::Key_Right, Qt::Key_Down, Qt::Key_Tab, Qt::Key_Right}) {
        key(next);
        order.append(reached());
    }
    EXPECT_EQ(order, QStringList({cut, copied, paste, all, cut}));
    key(Qt::Key_Left);
    EXPECT_EQ(reached(), all);
    key(Qt::Key_Up);
    EXPECT_EQ(reached(), paste);
    key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(reached(), copied);
    EXPECT_EQ(selected(), u"hello"_s); // the field heard nothing of it
    EXPECT_TRUE(input()->hasActiveFocus());
    key(Qt::Key_Enter);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"hello"_s);
}

TEST_F(EditMenuTest, AnEnterThatIsHeldOnTheMenuIsNoneForTheField)
{
    QSignalSpy accepted(field(), SIGNAL(accepted()));
    key(Qt::Key_Menu);
    key(Qt::Key_Return);
    ASSERT_EQ(text(), u"copied"_s);
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, u"\r"_s, true);
    QCoreApplication::sendEvent(&stage.window(), &held);
    EXPECT_EQ(accepted.count(), 0);
    key(Qt::Key_Return);
    EXPECT_EQ(accepted.count(), 1);
}

TEST_F(EditMenuTest, AMenuOpenedByAFingerIsGoneThroughToo)
{
    setText(u"hello"_s);
    longPress(at());
    EXPECT_EQ(reached(), QString());
    key(Qt::Key_Tab);
    EXPECT_EQ(reached(), paste);
    key(Qt::Key_Escape);
    longPress(at());
    key(Qt::Key_Left);
    EXPECT_EQ(reached(), all);
    key(Qt::Key_Space);
    EXPECT_EQ(selected(), u"hello"_s);
    EXPECT_EQ(text(), u"hello"_s);
}

TEST_F(EditMenuTest, TheEntryThatTheKeyboardHasReachedIsSeen)
{
    setText(u"hello"_s);
    key(Qt::Key_Menu);
    const auto ring = [this](const QString &name) {
        const QRect entry = stage.screen().find(name, QAccessible::MenuItem)->rect;
        return stage.shot().pixelColor(entry.left() + entry.width() / 2, entry.top() + 5) ==
               stage.theme().brand();
    };
    EXPECT_TRUE(ring(paste));
    EXPECT_FALSE(ring(all));
    key(Qt::Key_Right);
    EXPECT_FALSE(ring(paste));
    EXPECT_TRUE(ring(all));
}

// For assistive technology.

TEST_F(EditMenuTest, IsAMenuForAssistiveTechnology)
{
    setText(u"hello"_s);
    longPress(at());
    ASSERT_EQ(menus().size(), 1);
    EXPECT_EQ(menus().constFirst().name, u"Edit"_s);
    auto *interface = QAccessible::queryAccessibleInterface(menus().constFirst().object);
    ASSERT_EQ(interface->childCount(), 2);
    EXPECT_EQ(interface->child(0)->role(), QAccessible::MenuItem);
    EXPECT_EQ(interface->child(0)->text(QAccessible::Name), paste);
    EXPECT_EQ(interface->child(1)->text(QAccessible::Name), all);
}

TEST_F(EditMenuTest, AssistiveTechnologyChooses)
{
    longPress(at());
    EXPECT_TRUE(stage.screen().press(paste));
    EXPECT_EQ(text(), u"copied"_s);
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuTest, AssistiveTechnologyOpensItWithoutALongPress)
{
    auto *actions = QAccessible::queryAccessibleInterface(input())->actionInterface();
    ASSERT_TRUE(actions->actionNames().contains(QAccessibleActionInterface::showMenuAction()));
    actions->doAction(QAccessibleActionInterface::showMenuAction());
    EXPECT_EQ(offered(), QStringList(paste));
    EXPECT_TRUE(input()->hasActiveFocus());
    EXPECT_EQ(reached(), paste);
}

} // namespace
} // namespace clockwell::test
