#include "FieldTraits.h"

#include "ItemAccessible.h"

namespace clockwell {

namespace {

Qt::InputMethodHints keyboardHints(FieldTraits::Keyboard keyboard)
{
    switch (keyboard) {
    case FieldTraits::EmailKeyboard:
        return Qt::ImhEmailCharactersOnly;
    case FieldTraits::NumberPad:
        return Qt::ImhDigitsOnly;
    case FieldTraits::PhonePad:
        return Qt::ImhDialableCharactersOnly;
    case FieldTraits::DefaultKeyboard:
        break;
    }
    return Qt::ImhNone;
}

// Qt knows no hint for words or sentences: a keyboard that capitalises does so unless it is told not to.
Qt::InputMethodHints autocapHints(FieldTraits::Autocap autocap)
{
    switch (autocap) {
    case FieldTraits::NoAutocap:
        return Qt::ImhNoAutoUppercase;
    case FieldTraits::AllCharacters:
        return Qt::ImhPreferUppercase;
    case FieldTraits::Words:
    case FieldTraits::Sentences:
        break;
    }
    return Qt::ImhNone;
}

Qt::InputMethodHints contentHints(FieldTraits::TextContentType type)
{
    switch (type) {
    case FieldTraits::Password:
    case FieldTraits::NewPassword:
    case FieldTraits::OneTimeCode:
        return Qt::ImhSensitiveData;
    case FieldTraits::Name:
    case FieldTraits::UserName:
    case FieldTraits::TelephoneNumber:
    case FieldTraits::NoContentType:
        break;
    }
    return Qt::ImhNone;
}

} // namespace

FieldTraits::FieldTraits(QObject *parent) : QObject(parent)
{
    installItemAccessibles();
}

Qt::InputMethodHints FieldTraits::hints() const
{
    const Qt::InputMethodHints secret = m_secure ? Qt::ImhSensitiveData | Qt::ImhHiddenText : Qt::ImhNone;
    return Qt::ImhNoPredictiveText | keyboardHints(m_keyboard) | autocapHints(m_autocap) |
           contentHints(m_textContentType) | secret;
}

} // namespace clockwell
