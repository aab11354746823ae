#pragma once

#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace clockwell {

// The bodies of the account requests. Members are serialized in declaration order; an empty optional is
// omitted.

struct LoginBody
{
    QString email;
    QString password;
    QString deviceId;
};
BOOST_DESCRIBE_STRUCT(LoginBody, (), (email, password, deviceId))

struct SignupBody
{
    QString fullName;
    QString email;
    std::optional<QString> phone;
    QString password;
    QString deviceId;
    QString deviceModel;
    QString osVersion;
    std::optional<QString> instituteCode; ///< what the sign-up screen calls the company code
};
BOOST_DESCRIBE_STRUCT(SignupBody, (),
                      (fullName, email, phone, password, deviceId, deviceModel, osVersion, instituteCode))

struct VerifyOtpBody
{
    QString email;
    QString code;
};
BOOST_DESCRIBE_STRUCT(VerifyOtpBody, (), (email, code))

struct EmailBody
{
    QString email;
};
BOOST_DESCRIBE_STRUCT(EmailBody, (), (email))

struct ResetPasswordBody
{
    QString email;
    QString code;
    QString newPassword;
};
BOOST_DESCRIBE_STRUCT(ResetPasswordBody, (), (email, code, newPassword))

struct ChangePasswordBody
{
    QString currentPassword;
    QString newPassword;
};
BOOST_DESCRIBE_STRUCT(ChangePasswordBody, (), (currentPassword, newPassword))

} // namespace clockwell
