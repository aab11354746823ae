#include "ui/FieldTraits.h"

#include "ComponentStage.h"

#include <gtest/gtest.h>

namespace clockwell {

namespace {

Qt::InputMethodHints hints(FieldTraits::Keyboard keyboard, FieldTraits::TextContentType type,
                           FieldTraits::Autocap autocap, bool secure)
{
    FieldTraits traits;
    traits.setProperty("keyboard", keyboard);
    traits.setProperty("textContentType", type);
    traits.setProperty("autocap", autocap);
    traits.setProperty("secure", secure);
    return traits.hints();
}

} // namespace

TEST(FieldTraits, NeverCorrect)
{
    for (const auto keyboard : {FieldTraits::DefaultKeyboard, FieldTraits::EmailKeyboard,
                                FieldTraits::NumberPad, FieldTraits::PhonePad}) {
        EXPECT_TRUE(hints(keyboard, FieldTraits::NoContentType, FieldTraits::Sentences, false) &
                    Qt::ImhNoPredictiveText);
    }
}

TEST(FieldTraits, ChooseTheKeyboard)
{
    const auto of = [](FieldTraits::Keyboard keyboard) {
        return hints(keyboard, FieldTraits::NoContentType, FieldTraits::NoAutocap, false);
    };
    const Qt::InputMethodHints common = Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase;
    EXPECT_EQ(of(FieldTraits::DefaultKeyboard), common);
    EXPECT_EQ(of(FieldTraits::EmailKeyboard), common | Qt::ImhEmailCharactersOnly);
    EXPECT_EQ(of(FieldTraits::NumberPad), common | Qt::ImhDigitsOnly);
    EXPECT_EQ(of(FieldTraits::PhonePad), common | Qt::ImhDialableCharactersOnly);
}

TEST(FieldTraits, CapitaliseAsAsked)
{
    const auto of = [](FieldTraits::Autocap autocap) {
        return hints(FieldTraits::DefaultKeyboard, FieldTraits::NoContentType, autocap, false);
    };
    EXPECT_EQ(of(FieldTraits::NoAutocap), Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
    EXPECT_EQ(of(FieldTraits::AllCharacters), Qt::ImhNoPredictiveText | Qt::ImhPreferUppercase);
    EXPECT_EQ(of(FieldTraits::Words), Qt::InputMethodHints(Qt::ImhNoPredictiveText));
    EXPECT_EQ(of(FieldTraits::Sentences), Qt::InputMethodHints(Qt::ImhNoPredictiveText));
}

TEST(FieldTraits, KeepSecretsFromKeyboardsThatLearn)
{
    const auto of = [](FieldTraits::TextContentType type, bool secure) {
        return hints(FieldTraits::DefaultKeyboard, type, FieldTraits::NoAutocap, secure);
    };
    EXPECT_TRUE(of(FieldTraits::Password, true) & Qt::ImhSensitiveData);
    EXPECT_TRUE(of(FieldTraits::Password, true) & Qt::ImhHiddenText);
    EXPECT_TRUE(of(FieldTraits::NoContentType, true) & Qt::ImhSensitiveData);
    EXPECT_TRUE(of(FieldTraits::NewPassword, false) & Qt::ImhSensitiveData);
    EXPECT_TRUE(of(FieldTraits::OneTimeCode, false) & Qt::ImhSensitiveData);
    EXPECT_FALSE(of(FieldTraits::OneTimeCode, false) & Qt::ImhHiddenText);
    EXPECT_FALSE(of(FieldTraits::UserName, false) & Qt::ImhSensitiveData);
    EXPECT_FALSE(of(FieldTraits::Name, false) & Qt::ImhSensitiveData);
}

TEST(FieldTraits, ReachTheInput)
{
    test::ComponentStage stage("QorField { label: \"Email\"; keyboard: FieldTraits.EmailKeyboard; "
                               "textContentType: FieldTraits.UserName; autocap: FieldTraits.NoAutocap }");
    EXPECT_EQ(stage.part("input")->property("inputMethodHints").value<Qt::InputMethodHints>(),
              Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase | Qt::ImhEmailCharactersOnly);
}

} // namespace clockwell
