#pragma once

#include "AuthStore.h"

#include <QCoroTask>
#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace clockwell {

/// The fields and the one action of the sign-in screen. Main thread only; `auth` is not owned.
class LoginViewModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(clockwell::AuthStore *auth MEMBER m_auth REQUIRED)
    Q_PROPERTY(QString email READ email WRITE setEmail NOTIFY emailChanged)
    Q_PROPERTY(QString password READ password WRITE setPassword NOTIFY passwordChanged)
    Q_PROPERTY(bool failed READ failed NOTIFY errorChanged)
    Q_PROPERTY(QString error READ error NOTIFY errorChanged)
    Q_PROPERTY(bool loading READ loading NOTIFY loadingChanged)
    Q_PROPERTY(bool needsVerification READ needsVerification NOTIFY needsVerificationChanged)
    Q_PROPERTY(bool incomplete READ incomplete NOTIFY incompleteChanged)

public:
    explicit LoginViewModel(QObject *parent = nullptr);

    QString email() const { return m_email; }
    void setEmail(const QString &email);
    QString password() const { return m_password; }
    void setPassword(const QString &password);
    /// Whether `error` has a value; the value itself may be an empty text that the server chose.
    bool failed() const { return m_error.has_value(); }
    QString error() const { return m_error.value_or(QString()); }
    bool loading() const { return m_loading; }
    bool needsVerification() const { return m_needsVerification; }
    /// A field is empty. Blanks count as text: what they mean is the server's to say.
    bool incomplete() const { return m_email.isEmpty() || m_password.isEmpty(); }

    /// Starts a sign-in; the outcome shows in the fields, or in the store's phase.
    Q_SLOT void signIn();

Q_SIGNALS:
    void emailChanged();
    void passwordChanged();
    void errorChanged();
    void loadingChanged();
    void needsVerificationChanged();
    void incompleteChanged();

private:
    QCoro::Task<> runSignIn();
    void setError(std::optional<QString> error);
    void setLoading(bool loading);
    void setNeedsVerification(bool needed);

    AuthStore *m_auth = nullptr;
    QString m_email;
    QString m_password;
    std::optional<QString> m_error;
    bool m_loading = false;
    bool m_needsVerification = false;
};

} // namespace clockwell
