#pragma once

#include <QQuickItem>
#include <QVariant>

namespace clockwell {

/// Whether a TextInput hides its text, as one for a password does. The class is private to Qt; 0 is the
/// documented value of its enumerator Normal.
inline bool isMasked(const QQuickItem *input)
{
    constexpr int normalEcho = 0;
    return input->property("echoMode").toInt() != normalEcho;
}

} // namespace clockwell
