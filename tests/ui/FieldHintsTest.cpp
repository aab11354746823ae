#include "ComponentStage.h"
#include "support/screen/TextIn.h"

#include <QInputMethodEvent>

#include <gtest/gtest.h>

namespace clockwell::test {

namespace {

constexpr Qt::InputMethodHints secret = Qt::ImhSensitiveData | Qt::ImhHiddenText;

/// What a field with these properties asks of the on-screen keyboard.
Qt::InputMethodHints asked(const QByteArray &properties)
{
    ComponentStage stage("QorField { label: \"Field\"; " + properties + " }");
    QInputMethodQueryEvent query(Qt::ImHints);
    QCoreApplication::sendEvent(inputIn(stage.item()), &query);
    return Qt::InputMethodHints(query.value(Qt::ImHints).toInt());
}

} // namespace

TEST(FieldHints, NeitherCorrectNorCapitaliseUnlessAsked)
{
    EXPECT_EQ(asked(""), Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
    EXPECT_EQ(asked("hints: Qt.ImhNone"), Qt::InputMethodHints(Qt::ImhNoPredictiveText));
    EXPECT_EQ(asked("hints: Qt.ImhPreferUppercase"), Qt::ImhNoPredictiveText | Qt::ImhPreferUppercase);
}

TEST(FieldHints, ChooseTheKeyboard)
{
    EXPECT_EQ(asked("hints: Qt.ImhDigitsOnly"), Qt::ImhNoPredictiveText | Qt::ImhDigitsOnly);
    EXPECT_EQ(asked("hints: Qt.ImhEmailCharactersOnly | Qt.ImhNoAutoUppercase"),
              Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase | Qt::ImhEmailCharactersOnly);
}

TEST(FieldHints, KeepSecretsFromKeyboardsThatLearn)
{
    EXPECT_EQ(asked("secure: true") & secret, secret);
    EXPECT_EQ(asked("secure: true; hints: Qt.ImhNone") & secret, secret);
    EXPECT_FALSE(asked("") & secret);
}

TEST(FieldHints, KeepAShownSecretFromKeyboardsThatLearn)
{
    const auto shown = asked("secure: true; reveal: true");
    EXPECT_TRUE(shown & Qt::ImhSensitiveData);
    EXPECT_TRUE(shown & Qt::ImhNoPredictiveText);
}

} // namespace clockwell::test
