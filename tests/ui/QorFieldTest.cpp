#include "ComponentStage.h"
#include "support/screen/TextIn.h"
#include "ui/Theme.h"

#include <QClipboard>
#include <QFont>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QJSValue>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace clockwell::test {

namespace {

const auto secret = QStringLiteral("correct horse");
const auto password = QStringLiteral("Password");
const auto show = QStringLiteral("Show password");
const auto hide = QStringLiteral("Hide password");
const QColor textColor(230, 237, 248);

const QByteArray plainField = "QorField { label: \"Email\"; placeholder: \"name@company.com\" }";
const QByteArray secureField = "QorField { label: \"Password\"; placeholder: \"••••••••\"; secure: true }";

QAccessibleInterface *accessible(ComponentStage &stage)
{
    return QAccessible::queryAccessibleInterface(inputIn(stage.item()));
}

/// The text as it is drawn, masked or not.
QString shown(ComponentStage &stage)
{
    return inputIn(stage.item())->property("displayText").toString();
}

/// How a control is drawn.
QImage picture(ComponentStage &stage, const QString &name)
{
    const auto control = stage.screen().find(name);
    EXPECT_TRUE(control) << name.toStdString();
    return control ? stage.shot().copy(control->rect) : QImage();
}

/// Everything that assistive technology can read out of the window, wherever it asks.
QString everythingReadable(QAccessibleInterface *interface)
{
    QString all;
    for (const auto text :
         {QAccessible::Name, QAccessible::Description, QAccessible::Value, QAccessible::Help})
        all += interface->text(text) + u'\n';
    if (auto *text = interface->textInterface())
        all += text->text(0, text->characterCount()) + u'\n';
    for (int i = 0; i < interface->childCount(); ++i)
        all += everythingReadable(interface->child(i));
    return all;
}

} // namespace

TEST(QorField, IsNamedByItsLabel)
{
    ComponentStage stage(plainField);
    EXPECT_EQ(stage.screen().find(QStringLiteral("Email"))->role, QAccessible::EditableText);
    EXPECT_TRUE(stage.screen().find(QStringLiteral("Email"))->state.editable);
    EXPECT_TRUE(stage.screen().find(QStringLiteral("Email"))->state.focusable);
    EXPECT_EQ(stage.screen().texts(), QStringList(QStringLiteral("Email")));
}

TEST(QorField, TakesWhatIsTyped)
{
    ComponentStage stage(plainField);
    QSignalSpy edited(stage.item(), SIGNAL(textEdited()));
    EXPECT_TRUE(stage.screen().type(QStringLiteral("Email"), QStringLiteral("ada")));
    EXPECT_EQ(stage.item()->property("text").toString(), QStringLiteral("ada"));
    EXPECT_EQ(edited.count(), 3);
    EXPECT_EQ(accessible(stage)->text(QAccessible::Value), QStringLiteral("ada"));
}

TEST(QorField, StaysBoundInBothDirections)
{
    ComponentStage stage("QorField { id: field; property string model: \"A\"; label: \"Code\"; text: model; "
                         "onTextEdited: model = text.toUpperCase() }");
    stage.screen().type(QStringLiteral("Code"), QStringLiteral("b"));
    EXPECT_EQ(stage.item()->property("model").toString(), QStringLiteral("AB"));
    EXPECT_EQ(stage.item()->property("text").toString(), QStringLiteral("AB"));
    stage.item()->setProperty("model", QStringLiteral("NEW"));
    EXPECT_EQ(stage.item()->property("text").toString(), QStringLiteral("NEW"));
}

TEST(QorField, TellsOfTextThatAssistiveTechnologySets)
{
    ComponentStage stage(plainField);
    QSignalSpy edited(stage.item(), SIGNAL(textEdited()));
    auto *text = accessible(stage)->editableTextInterface();
    if (text)
        text->insertText(0, QStringLiteral("x"));
    else
        accessible(stage)->setText(QAccessible::Value, QStringLiteral("x"));
    EXPECT_EQ(stage.item()->property("text").toString(), QStringLiteral("x"));
    EXPECT_EQ(edited.count(), 1);
}

// What is copied out of a mail or a terminal ends in a line break, which nobody would see in the field.
TEST(QorField, KeepsWhatIsPastedOnOneLine)
{
    ComponentStage stage(
        "QorField { id: field; property string model; property bool broken: false; label: \"Email\"; "
        "onTextEdited: { model = text; broken = broken || /[\\n\\r]/.test(text) } }");
    const auto paste = [&](const QString &text) {
        QGuiApplication::clipboard()->setText(text);
        stage.screen().key(Qt::Key_V, Qt::ControlModifier);
    };
    ASSERT_TRUE(stage.screen().type(QStringLiteral("Email"), QStringLiteral("<>")));
    stage.screen().key(Qt::Key_Left);
    paste(QStringLiteral("Ada\r\nByron"));
    EXPECT_EQ(stage.item()->property("text").toString(), QStringLiteral("<Ada Byron>"));
    EXPECT_EQ(stage.item()->property("cursorPosition").toInt(), 10);
    stage.screen().key(Qt::Key_A, Qt::ControlModifier);
    paste(QStringLiteral("\nada@example.org\u2028\n"));
    EXPECT_EQ(stage.item()->property("text").toString(), QStringLiteral("ada@example.org"));
    EXPECT_EQ(stage.item()->property("model").toString(), QStringLiteral("ada@example.org"));
    EXPECT_FALSE(stage.item()->property("broken").toBool());
    stage.screen().typeText(QStringLiteral("!"));
    EXPECT_EQ(stage.item()->property("text").toString(), QStringLiteral("ada@example.org!"));
    EXPECT_EQ(accessible(stage)->text(QAccessible::Value), QStringLiteral("ada@example.org!"));
}

TEST(QorField, KeepsWhatAnInputMethodCommitsOnOneLine)
{
    ComponentStage stage("QorField { property var told: []; label: \"Name\"; "
                         "onTextEdited: told.push(text + \"|\" + cursorPosition) }");
    ASSERT_TRUE(stage.screen().type(QStringLiteral("Name"), QStringLiteral("<>")));
    stage.screen().key(Qt::Key_Left);
    QInputMethodEvent commit;
    commit.setCommitString(QStringLiteral("a\nb\n"));
    QCoreApplication::sendEvent(stage.window().activeFocusItem(), &commit);
    EXPECT_EQ(stage.item()->property("text").toString(), QStringLiteral("<a b >"));
    EXPECT_EQ(stage.item()->property("cursorPosition").toInt(), 4);
    EXPECT_EQ(stage.item()->property("told").value<QJSValue>().toVariant().toStringList().last(),
              QStringLiteral("<a b >|4"));
}

TEST(QorField, TellsWhenEnterIsPressed)
{
    ComponentStage stage(plainField);
    QSignalSpy accepted(stage.item(), SIGNAL(accepted()));
    stage.item()->forceActiveFocus();
    QTest::keyClick(&stage.window(), Qt::Key_Return);
    QTest::keyClick(&stage.window(), Qt::Key_Enter);
    EXPECT_EQ(accepted.count(), 2);
}

TEST(QorField, ShowsItsPlaceholderOnlyWhileEmpty)
{
    ComponentStage stage(plainField);
    const auto placeholder = QStringLiteral("name@company.com");
    EXPECT_TRUE(stage.shownText(placeholder));
    EXPECT_EQ(accessible(stage)->text(QAccessible::Description), placeholder);
    stage.screen().type(QStringLiteral("Email"), QStringLiteral("a"));
    EXPECT_FALSE(stage.shownText(placeholder));
    QTest::keyClick(&stage.window(), Qt::Key_Backspace);
    EXPECT_TRUE(stage.shownText(placeholder));
}

TEST(QorField, ShowsNoEyeUnlessItIsSecure)
{
    ComponentStage stage(plainField);
    EXPECT_FALSE(stage.screen().shows(show));
    stage.screen().type(QStringLiteral("Email"), QString(100, u'W'));
    EXPECT_GT(stage.areaOf(textColor).right(), 350 - 12 - 10); // the text has its room
}

TEST(QorField, MasksASecureTextAndKeepsItFromAssistiveTechnology)
{
    ComponentStage stage(secureField);
    EXPECT_TRUE(stage.screen().type(password, secret));
    EXPECT_EQ(shown(stage), QString(secret.size(), QChar(0x2022)));
    EXPECT_TRUE(accessible(stage)->state().passwordEdit);
    EXPECT_FALSE(everythingReadable(QAccessible::queryAccessibleInterface(&stage.window())).contains(secret));
}

TEST(QorField, ASecureFieldIsNamedToo)
{
    ComponentStage stage(secureField);
    QAccessible::setActive(false);
    QAccessible::setActive(true); // a screen reader is started while it is shown
    EXPECT_EQ(stage.screen().find(password)->role, QAccessible::EditableText);
    EXPECT_TRUE(stage.screen().find(password)->state.passwordEdit);
}

TEST(QorField, RevealsAndMasksWithoutLosingTextOrCursor)
{
    ComponentStage stage(secureField);
    stage.screen().type(password, secret);
    stage.item()->setProperty("cursorPosition", 4);
    const QImage eye = picture(stage, show);
    EXPECT_TRUE(stage.screen().click(show));
    EXPECT_EQ(shown(stage), secret);
    EXPECT_NE(picture(stage, hide), eye);
    EXPECT_FALSE(accessible(stage)->state().passwordEdit);
    EXPECT_EQ(stage.item()->property("cursorPosition").toInt(), 4);
    EXPECT_TRUE(inputIn(stage.item())->hasActiveFocus());
    EXPECT_TRUE(stage.screen().press(hide));
    EXPECT_EQ(shown(stage), QString(secret.size(), QChar(0x2022)));
    EXPECT_EQ(stage.item()->property("text").toString(), secret);
    EXPECT_EQ(stage.item()->property("cursorPosition").toInt(), 4);
    EXPECT_EQ(picture(stage, show), eye);
}

TEST(QorField, ShowsAssistiveTechnologyARevealedTextWithCursorAndSelection)
{
    ComponentStage stage(secureField);
    stage.screen().type(password, secret);
    stage.item()->setProperty("reveal", true);
    auto *text = accessible(stage)->textInterface();
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->text(0, text->characterCount()), secret);
    text->setCursorPosition(3);
    EXPECT_EQ(text->cursorPosition(), 3);
    EXPECT_EQ(text->selectionCount(), 0);
    text->setSelection(0, 2, 5);
    int start = -1;
    int end = -1;
    text->selection(0, &start, &end);
    EXPECT_EQ(text->selectionCount(), 1);
    EXPECT_EQ(start, 2);
    EXPECT_EQ(end, 5);
    EXPECT_EQ(text->offsetAtPoint(text->characterRect(4).center()), 4);
    text->removeSelection(0);
    EXPECT_EQ(text->selectionCount(), 0);
}

TEST(QorField, IsWhereItIsSeenForAssistiveTechnology)
{
    ComponentStage stage("QorField { label: \"Email\"; text: \"A\" }");
    const QRect rect = stage.screen().find(QStringLiteral("Email"))->rect;
    EXPECT_TRUE(QRect(20, 20, 350, 100).contains(rect));
    EXPECT_TRUE(rect.contains(QRect(20 + 12, 20, 350 - 24, 44)));
}

TEST(QorField, IsReportedDisabled)
{
    ComponentStage stage(plainField);
    EXPECT_TRUE(stage.screen().isEnabled(QStringLiteral("Email")));
    stage.item()->setEnabled(false);
    EXPECT_FALSE(stage.screen().isEnabled(QStringLiteral("Email")));
}

TEST(QorField, RevealDoesNotCountAsAnEdit)
{
    ComponentStage stage(secureField);
    stage.screen().type(password, secret);
    QSignalSpy edited(stage.item(), SIGNAL(textEdited()));
    stage.screen().click(show);
    EXPECT_EQ(edited.count(), 0);
}

TEST(QorField, DoesNotLetASecretBeCopiedWhileMasked)
{
    const auto before = QStringLiteral("what was there");
    QGuiApplication::clipboard()->setText(before);
    ComponentStage stage(secureField);
    stage.screen().type(password, secret);
    QTest::keySequence(&stage.window(), QKeySequence::SelectAll);
    QTest::keySequence(&stage.window(), QKeySequence::Copy);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), before);
    QTest::keySequence(&stage.window(), QKeySequence::Cut);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), before);
    stage.item()->setProperty("reveal", true);
    QTest::keySequence(&stage.window(), QKeySequence::SelectAll);
    QTest::keySequence(&stage.window(), QKeySequence::Copy);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), secret);
}

TEST(QorField, IsFilledWithTheSurfaceColorInsideAOnePointOutline)
{
    ComponentStage stage(plainField);
    const QColor outline = stage.colorAt(175, 0);
    EXPECT_NEAR(outline.red(), 19 + .08 * (255 - 19), 1.5);
    EXPECT_NEAR(outline.blue(), 69 + .08 * (255 - 69), 1.5);
    EXPECT_EQ(stage.colorAt(175, 1), QColor(19, 38, 69));
    EXPECT_EQ(stage.colorAt(1, 1), QColor(9, 21, 42));
    ComponentStage frame("ContinuousRectangle { width: 350; height: 46; radius: 11; color: Theme.surface; "
                         "borderColor: Theme.divider; borderWidth: 1 }");
    const QRect corner(20, 20, 12, 12);
    EXPECT_EQ(stage.shot().copy(corner), frame.shot().copy(corner));
}

TEST(QorField, PadsItsTextByTwelvePoints)
{
    ComponentStage stage(secureField);
    stage.screen().type(password, QString(100, u'W'));
    stage.screen().key(Qt::Key_Home);
    const QRect first = accessible(stage)->textInterface()->characterRect(0);
    const QPoint origin = stage.window().mapToGlobal(stage.item()->mapToScene(QPointF()).toPoint());
    EXPECT_EQ(first.left() - origin.x(), 12);
    EXPECT_EQ(first.top() - origin.y(), 12);
    EXPECT_NEAR(stage.item()->height(), first.height() + 24, 1);
    const QRect eye = stage.screen().find(show)->rect.translated(-20, -20);
    EXPECT_EQ(eye.right() + 1, 350 - 12);
    EXPECT_LT(stage.areaOf(textColor).right(), eye.left());
    EXPECT_GT(stage.areaOf(textColor).right(), eye.left() - 30);
}

TEST(QorField, RevealIsHitWithinFortyFourPoints)
{
    ComponentStage stage(secureField);
    const QPointF middle = QRectF(stage.screen().find(show)->rect).center();
    bool revealed = false;
    for (const QPointF away : {QPointF(-21, 0), QPointF(21, 0), QPointF(0, -21), QPointF(0, 21)}) {
        QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, (middle + away).toPoint());
        revealed = !revealed;
        EXPECT_EQ(stage.screen().shows(hide), revealed) << away.x() << ',' << away.y();
    }
}

TEST(QorField, GivesTheKeyboardToTheTextWhereverItIsTapped)
{
    ComponentStage stage(plainField);
    QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, QPoint(300, 22));
    EXPECT_TRUE(inputIn(stage.item())->hasActiveFocus());
}

TEST(QorField, TakesTheTabKeyInReadingOrder)
{
    ComponentStage stage(
        "Column { width: 350; QorField { objectName: \"a\"; label: \"A\"; secure: true } "
        "QorField { objectName: \"b\"; label: \"B\" } PrimaryButton { objectName: \"c\"; title: \"C\" } }");
    const auto focusedName = [&] {
        return QAccessible::queryAccessibleInterface(stage.window().activeFocusItem())
            ->text(QAccessible::Name);
    };
    stage.part("a")->forceActiveFocus();
    QStringList order{focusedName()};
    for (int i = 0; i < 3; ++i) {
        QTest::keyClick(&stage.window(), Qt::Key_Tab);
        order.append(focusedName());
    }
    EXPECT_EQ(order, QStringList({QStringLiteral("A"), show, QStringLiteral("B"), QStringLiteral("C")}));
    QTest::keyClick(&stage.window(), Qt::Key_Backtab);
    EXPECT_EQ(focusedName(), QStringLiteral("B"));
}

TEST(QorField, ShowsARingWhileItHasTheFocus)
{
    ComponentStage stage(plainField);
    EXPECT_EQ(stage.colorAt(175, -1), QColor(9, 21, 42));
    stage.item()->forceActiveFocus();
    EXPECT_EQ(stage.colorAt(175, -1), QColor(39, 120, 245));
}

TEST(QorField, KeepsALongTextInsideItsFrame)
{
    ComponentStage stage(plainField);
    stage.screen().type(QStringLiteral("Email"), QString(100, u'W'));
    inputIn(stage.item())->setFocus(false);
    for (const int x : {4, 8, 342, 346})
        EXPECT_EQ(stage.colorAt(x, 22), QColor(19, 38, 69)) << x;
}

TEST(QorField, GrowsWithTheTextScale)
{
    ComponentStage stage(secureField);
    const qreal before = stage.item()->height();
    stage.theme().setTextScale(2);
    stage.shot();
    EXPECT_EQ(inputIn(stage.item())->property("font").value<QFont>().pixelSize(), 34);
    EXPECT_GT(stage.item()->height(), before + 15);
    EXPECT_EQ(stage.screen().find(show)->rect.width(), 44);
}

} // namespace clockwell::test
