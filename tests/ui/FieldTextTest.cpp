#include "ComponentStage.h"
#include "support/screen/TextIn.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QJSValue>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace clockwell::test {

namespace {

/// A field in which something is being composed, by an input method that commits nothing when it is asked to.
class FieldTextTest : public ::testing::Test
{
protected:
    void compose(const QString &composing, const QString &commit = {})
    {
        QInputMethodEvent event(composing, {});
        event.setCommitString(commit);
        QCoreApplication::sendEvent(input(), &event);
    }

    QQuickItem *input() { return inputIn(stage.item()); }
    /// The text when nothing of it is being composed any more.
    QString own()
    {
        EXPECT_EQ(composing(), QString());
        return text();
    }
    bool showsPlaceholder() { return stage.shownText(u"Ada"_s); }
    QString composing() { return input()->property("preeditText").toString(); }
    QString text() { return stage.item()->property("text").toString(); }
    QStringList told() { return stage.item()->property("told").value<QJSValue>().toVariant().toStringList(); }
    void set(const char *property, const QVariant &value) { stage.item()->setProperty(property, value); }

    ComponentStage stage{"QorField { property var told: []; label: \"Name\"; placeholder: \"Ada\"; "
                         "onTextEdited: told.push(text + \"|\" + cursorPosition) }"};
};

} // namespace

TEST_F(FieldTextTest, TellsOfEachStepOfAComposition)
{
    stage.screen().type(u"Name"_s, u"<>"_s);
    stage.screen().key(Qt::Key_Left);
    compose(u"ㅅ"_s);
    compose(u"수"_s);
    compose(u"ㅈ"_s, u"수"_s);
    compose(QString());
    EXPECT_EQ(text(), u"<수>"_s);
    EXPECT_EQ(told().mid(2), (QStringList{u"<ㅅ>|2"_s, u"<수>|2"_s, u"<수ㅈ>|3"_s, u"<수>|2"_s}));
    EXPECT_EQ(own(), u"<수>"_s);
}

TEST_F(FieldTextTest, ShowsNoPlaceholderBelowWhatIsComposed)
{
    stage.item()->forceActiveFocus();
    compose(u"ㅅ"_s);
    EXPECT_FALSE(showsPlaceholder());
    compose(QString());
    EXPECT_TRUE(showsPlaceholder());
}

TEST_F(FieldTextTest, HoldsNoMoreThanWillBeCommitted)
{
    set("maximumLength", 4);
    stage.screen().type(u"Name"_s, u"abc"_s);
    compose(u"de"_s);
    EXPECT_EQ(text(), u"abcd"_s);
    stage.screen().key(Qt::Key_Return);
    EXPECT_EQ(own(), u"abcd"_s);
}

TEST_F(FieldTextTest, IsOnOneLineWhileItIsComposed)
{
    stage.item()->forceActiveFocus();
    compose(u"a\nb"_s);
    EXPECT_EQ(text(), u"a b"_s);
    stage.screen().key(Qt::Key_Return);
    EXPECT_EQ(own(), u"a b"_s);
}

TEST_F(FieldTextTest, IsNotTakenAwayByTheModelThatItIsBoundTo)
{
    ComponentStage bound("QorField { property string model; label: \"Code\"; text: model; "
                         "onTextEdited: model = text.toUpperCase() }");
    bound.item()->forceActiveFocus();
    const auto send = [&](const QString &composing, const QString &commit) {
        QInputMethodEvent event(composing, {});
        event.setCommitString(commit);
        QCoreApplication::sendEvent(inputIn(bound.item()), &event);
    };
    send(u"b"_s, QString());
    send(u"bc"_s, QString());
    EXPECT_EQ(inputIn(bound.item())->property("preeditText").toString(), u"bc"_s);
    EXPECT_EQ(bound.item()->property("model").toString(), u"BC"_s);
    send(QString(), u"bc"_s);
    EXPECT_EQ(bound.item()->property("text").toString(), u"BC"_s);
}

TEST_F(FieldTextTest, IsNotDoubledByALateCommit)
{
    stage.screen().type(u"Name"_s, u"김민"_s);
    compose(u"수"_s);
    stage.screen().key(Qt::Key_Return);
    EXPECT_EQ(own(), u"김민수"_s);
    compose(QString());
    compose(QString(), u"수"_s);
    EXPECT_EQ(own(), u"김민수"_s);
    compose(QString(), u"수"_s); // this one has been typed
    EXPECT_EQ(own(), u"김민수수"_s);
}

TEST_F(FieldTextTest, TakesTheSameAgainWhenItIsComposedAgain)
{
    stage.screen().type(u"Name"_s, u"김민"_s);
    compose(u"수"_s);
    stage.screen().key(Qt::Key_Return);
    compose(u"ㅅ"_s);
    compose(QString(), u"수"_s);
    EXPECT_EQ(own(), u"김민수수"_s);
}

TEST_F(FieldTextTest, StaysWhereTheFieldIsTapped)
{
    stage.screen().type(u"Name"_s, u"Kim "_s);
    compose(u"수"_s);
    stage.screen().click(u"Name"_s, QAccessible::EditableText);
    EXPECT_EQ(own(), u"Kim 수"_s);
    EXPECT_EQ(composing(), QString());
}

TEST_F(FieldTextTest, StaysWhenItIsRevealed)
{
    set("secure", true);
    stage.screen().type(u"Name"_s, u"비"_s);
    compose(u"밀"_s);
    stage.screen().click(u"Show password"_s);
    EXPECT_EQ(own(), u"비밀"_s);
    compose(u"번"_s);
    stage.screen().click(u"Hide password"_s);
    EXPECT_EQ(own(), u"비밀번"_s);
}

TEST_F(FieldTextTest, IsMaskedLikeTheRest)
{
    set("secure", true);
    stage.screen().type(u"Name"_s, u"abc"_s);
    compose(u"ㅁ"_s);
    compose(u"밀"_s);
    EXPECT_EQ(input()->property("displayText").toString(), u"••••"_s);
    auto *interface = QAccessible::queryAccessibleInterface(input());
    EXPECT_EQ(interface->text(QAccessible::Value), u"••••"_s);
    EXPECT_EQ(text(), u"abc밀"_s);
    EXPECT_EQ(told().last(), u"abc밀|4"_s);
    compose(u"ㅂ"_s, u"밀"_s);
    EXPECT_EQ(input()->property("displayText").toString(), u"•••••"_s);
    EXPECT_EQ(text(), u"abc밀ㅂ"_s);
    stage.screen().click(u"Show password"_s);
    EXPECT_EQ(input()->property("displayText").toString(), u"abc밀ㅂ"_s);
}

TEST_F(FieldTextTest, StaysWhenSomethingIsPasted)
{
    QGuiApplication::clipboard()->setText(u"copied"_s);
    stage.item()->forceActiveFocus();
    compose(u"draft "_s);
    stage.screen().key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(own(), u"draft copied"_s);
}

TEST_F(FieldTextTest, CanBeSelectedByTheMenuLikeTheRest)
{
    QGuiApplication::clipboard()->clear();
    stage.item()->forceActiveFocus();
    compose(u"수"_s);
    stage.screen().key(Qt::Key_Menu);
    ASSERT_TRUE(stage.screen().click(u"Select all"_s)) << stage.screen().dump().toStdString();
    EXPECT_EQ(input()->property("selectedText").toString(), u"수"_s);
}

} // namespace clockwell::test
