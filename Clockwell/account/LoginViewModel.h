#pragma once

#include "AuthStore.h"
#include "FormViewModel.h"

#include <QCoroTask>

namespace clockwell {

/// The fields and the submit action of the sign-in screen. Main thread only; `auth` is not owned.
class LoginViewModel : public clockwell::FormViewModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(clockwell::AuthStore *auth MEMBER m_auth REQUIRED)
    Q_PROPERTY(QString email READ email WRITE setEmail NOTIFY emailChanged)
    Q_PROPERTY(QString password READ password WRITE setPassword NOTIFY passwordChanged)
    Q_PROPERTY(bool needsVerification READ needsVerification NOTIFY needsVerificationChanged)

public:
    explicit LoginViewModel(QObject *parent = nullptr);

    QString email() const { return m_email; }
    void setEmail(const QString &email);
    QString password() const { return m_password; }
    void setPassword(const QString &password);
    bool needsVerification() const { return m_needsVerification; }
    bool incomplete() const override { return m_email.isEmpty() || m_password.isEmpty(); }

    /// Starts a sign-in; the outcome is reported by the properties or by the store's phase.
    Q_SLOT void signIn();

Q_SIGNALS:
    void emailChanged();
    void passwordChanged();
    void needsVerificationChanged();

private:
    QCoro::Task<> runSignIn();
    void setNeedsVerification(bool needed);

    AuthStore *m_auth = nullptr;
    QString m_email;
    QString m_password;
    bool m_needsVerification = false;
};

} // namespace clockwell
