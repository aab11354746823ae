#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// What a text field is for, and what follows from it for the on-screen keyboard. Qt 6.4 has no content types
/// for autofill, so `textContentType` matters only as far as an input hint can say the same.
class FieldTraits : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(Keyboard keyboard MEMBER m_keyboard NOTIFY changed)
    Q_PROPERTY(TextContentType textContentType MEMBER m_textContentType NOTIFY changed)
    Q_PROPERTY(Autocap autocap MEMBER m_autocap NOTIFY changed)
    Q_PROPERTY(bool secure MEMBER m_secure NOTIFY changed)
    Q_PROPERTY(Qt::InputMethodHints hints READ hints NOTIFY changed)

public:
    enum Keyboard { DefaultKeyboard, EmailKeyboard, NumberPad, PhonePad };
    Q_ENUM(Keyboard)
    enum TextContentType {
        NoContentType,
        Name,
        UserName,
        TelephoneNumber,
        Password,
        NewPassword,
        OneTimeCode
    };
    Q_ENUM(TextContentType)
    enum Autocap { NoAutocap, Words, Sentences, AllCharacters };
    Q_ENUM(Autocap)

    explicit FieldTraits(QObject *parent = nullptr);

    /// Autocorrection is off in every field, whatever it is for.
    Qt::InputMethodHints hints() const;

Q_SIGNALS:
    void changed();

private:
    Keyboard m_keyboard = DefaultKeyboard;
    TextContentType m_textContentType = NoContentType;
    Autocap m_autocap = NoAutocap;
    bool m_secure = false;
};

} // namespace clockwell
