#include "ComponentStage.h"
#include "support/screen/TextIn.h"

#include <QInputMethodEvent>

#include <gtest/gtest.h>

namespace clockwell::test {

namespace {

/// What a field with these traits asks of the on-screen keyboard.
Qt::InputMethodHints hints(const QByteArray &traits)
{
    ComponentStage stage("QorField { label: \"Field\"; " + traits + " }");
    QInputMethodQueryEvent query(Qt::ImHints);
    QCoreApplication::sendEvent(inputIn(stage.item()), &query);
    return Qt::InputMethodHints(query.value(Qt::ImHints).toInt());
}

} // namespace

TEST(FieldTraits, NeverCorrect)
{
    for (const char *keyboard : {"DefaultKeyboard", "EmailKeyboard", "NumberPad", "PhonePad"})
        EXPECT_TRUE(hints(QByteArray("autocap: FieldTraits.Sentences; keyboard: FieldTraits.") + keyboard) &
                    Qt::ImhNoPredictiveText)
            << keyboard;
}

TEST(FieldTraits, ChooseTheKeyboard)
{
    const Qt::InputMethodHints common = Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase;
    EXPECT_EQ(hints(""), common);
    EXPECT_EQ(hints("keyboard: FieldTraits.DefaultKeyboard"), common);
    EXPECT_EQ(hints("keyboard: FieldTraits.EmailKeyboard"), common | Qt::ImhEmailCharactersOnly);
    EXPECT_EQ(hints("keyboard: FieldTraits.NumberPad"), common | Qt::ImhDigitsOnly);
    EXPECT_EQ(hints("keyboard: FieldTraits.PhonePad"), common | Qt::ImhDialableCharactersOnly);
}

TEST(FieldTraits, CapitaliseAsAsked)
{
    EXPECT_EQ(hints("autocap: FieldTraits.NoAutocap"), Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
    EXPECT_EQ(hints("autocap: FieldTraits.AllCharacters"), Qt::ImhNoPredictiveText | Qt::ImhPreferUppercase);
    EXPECT_EQ(hints("autocap: FieldTraits.Words"), Qt::InputMethodHints(Qt::ImhNoPredictiveText));
    EXPECT_EQ(hints("autocap: FieldTraits.Sentences"), Qt::InputMethodHints(Qt::ImhNoPredictiveText));
}

TEST(FieldTraits, KeepSecretsFromKeyboardsThatLearn)
{
    const auto secret = Qt::ImhSensitiveData | Qt::ImhHiddenText;
    EXPECT_EQ(hints("textContentType: FieldTraits.Password; secure: true") & secret, secret);
    EXPECT_EQ(hints("secure: true") & secret, secret);
    EXPECT_TRUE(hints("textContentType: FieldTraits.NewPassword") & Qt::ImhSensitiveData);
    EXPECT_TRUE(hints("textContentType: FieldTraits.OneTimeCode") & Qt::ImhSensitiveData);
    EXPECT_FALSE(hints("textContentType: FieldTraits.OneTimeCode") & Qt::ImhHiddenText);
    EXPECT_FALSE(hints("textContentType: FieldTraits.UserName") & Qt::ImhSensitiveData);
    EXPECT_FALSE(hints("textContentType: FieldTraits.Name") & Qt::ImhSensitiveData);
    EXPECT_FALSE(hints("textContentType: FieldTraits.TelephoneNumber") & Qt::ImhSensitiveData);
}

TEST(FieldTraits, KeepAShownSecretFromKeyboardsThatLearn)
{
    const auto shown = hints("secure: true; reveal: true");
    EXPECT_TRUE(shown & Qt::ImhSensitiveData);
    EXPECT_TRUE(shown & Qt::ImhNoPredictiveText);
}

} // namespace clockwell::test
