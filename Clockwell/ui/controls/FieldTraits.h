#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

/// What a text field is for, as what follows from it for the on-screen keyboard. Qt 6.4 knows no content
/// types for autofill and no hint for words or sentences: those matter only as far as an input hint can say
/// the same.
namespace clockwell::FieldTraits {
Q_NAMESPACE
QML_ELEMENT

enum Keyboard {
    DefaultKeyboard = Qt::ImhNone,
    EmailKeyboard = Qt::ImhEmailCharactersOnly,
    NumberPad = Qt::ImhDigitsOnly,
    PhonePad = Qt::ImhDialableCharactersOnly
};
Q_ENUM_NS(Keyboard)

enum TextContentType {
    NoContentType = Qt::ImhNone,
    Name = NoContentType,
    UserName = NoContentType,
    TelephoneNumber = NoContentType,
    Password = Qt::ImhSensitiveData,
    NewPassword = Password,
    OneTimeCode = Password
};
Q_ENUM_NS(TextContentType)

enum Autocap {
    NoAutocap = Qt::ImhNoAutoUppercase,
    Words = Qt::ImhNone,
    Sentences = Words,
    AllCharacters = Qt::ImhPreferUppercase
};
Q_ENUM_NS(Autocap)

} // namespace clockwell::FieldTraits
