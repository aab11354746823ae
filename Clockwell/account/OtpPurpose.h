#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

/// What a six-digit code is for. A separate namespace, so that using a purpose does not load the code screen.
namespace clockwell::OtpPurpose {
Q_NAMESPACE
QML_ELEMENT

enum Purpose { VerifyEmail, ResetPassword };
Q_ENUM_NS(Purpose)

} // namespace clockwell::OtpPurpose
