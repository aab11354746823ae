#pragma once

#include "AuthStore.h"

#include <QCoroTask>
#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace clockwell {

/// The fields and the one action of the sign-up screen. Main thread only; `auth` is not owned.
class SignupViewModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(clockwell::AuthStore *auth MEMBER m_auth REQUIRED)
    Q_PROPERTY(QString fullName READ fullName WRITE setFullName NOTIFY fullNameChanged)
    Q_PROPERTY(QString email READ email WRITE setEmail NOTIFY emailChanged)
    Q_PROPERTY(QString trimmedEmail READ trimmedEmail NOTIFY emailChanged)
    Q_PROPERTY(QString phone READ phone WRITE setPhone NOTIFY phoneChanged)
    Q_PROPERTY(QString companyCode READ companyCode WRITE setCompanyCode NOTIFY companyCodeChanged)
    Q_PROPERTY(QString password READ password WRITE setPassword NOTIFY passwordChanged)
    Q_PROPERTY(bool failed READ failed NOTIFY errorChanged)
    Q_PROPERTY(QString error READ error NOTIFY errorChanged)
    Q_PROPERTY(bool loading READ loading NOTIFY loadingChanged)
    Q_PROPERTY(bool goToOtp READ goToOtp WRITE setGoToOtp NOTIFY goToOtpChanged)
    Q_PROPERTY(bool incomplete READ incomplete NOTIFY incompleteChanged)

public:
    explicit SignupViewModel(QObject *parent = nullptr);

    QString fullName() const { return m_fullName; }
    void setFullName(const QString &fullName);
    QString email() const { return m_email; }
    void setEmail(const QString &email);
    /// The address as it is sent, and as the code screen gets it.
    QString trimmedEmail() const;
    QString phone() const { return m_phone; }
    void setPhone(const QString &phone);
    QString companyCode() const { return m_companyCode; }
    void setCompanyCode(const QString &companyCode);
    QString password() const { return m_password; }
    void setPassword(const QString &password);
    /// Whether `error` has a value; the value itself may be an empty text that the server chose.
    bool failed() const { return m_error.has_value(); }
    QString error() const { return m_error.value_or(QString()); }
    bool loading() const { return m_loading; }
    /// The account is there: the code screen is due.
    bool goToOtp() const { return m_goToOtp; }
    void setGoToOtp(bool go);
    /// A field that is not optional is empty. Blanks count as text: what they mean is the server's to say.
    bool incomplete() const { return m_fullName.isEmpty() || m_email.isEmpty() || m_password.isEmpty(); }

    /// Asks for the account. Does nothing while a request runs or a field is missing.
    Q_SLOT void submit();

Q_SIGNALS:
    void fullNameChanged();
    void emailChanged();
    void phoneChanged();
    void companyCodeChanged();
    void passwordChanged();
    void errorChanged();
    void loadingChanged();
    void goToOtpChanged();
    void incompleteChanged();

private:
    using Signal = void (SignupViewModel::*)();

    void edit(QString &field, const QString &text, Signal changed);
    QCoro::Task<> runSubmit();
    void setError(std::optional<QString> error);
    void setLoading(bool loading);

    AuthStore *m_auth = nullptr;
    QString m_fullName;
    QString m_email;
    QString m_phone;
    QString m_companyCode;
    QString m_password;
    std::optional<QString> m_error;
    bool m_loading = false;
    bool m_goToOtp = false;
};

} // namespace clockwell
