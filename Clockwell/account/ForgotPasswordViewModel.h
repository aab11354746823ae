#pragma once

#include "AuthStore.h"
#include "Timing.h"

#include <QCoroTask>
#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <chrono>
#include <optional>

namespace clockwell {

/// The fields and the one action of the screen that asks for a reset code. Main thread only; `auth` and
/// `timing` are not owned.
class ForgotPasswordViewModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(clockwell::AuthStore *auth MEMBER m_auth REQUIRED)
    Q_PROPERTY(clockwell::Timing *timing MEMBER m_timing REQUIRED)
    Q_PROPERTY(QString prefillEmail MEMBER m_prefillEmail REQUIRED)
    Q_PROPERTY(QString email READ email WRITE setEmail NOTIFY emailChanged)
    Q_PROPERTY(QString trimmedEmail READ trimmedEmail NOTIFY emailChanged)
    Q_PROPERTY(bool failed READ failed NOTIFY errorChanged)
    Q_PROPERTY(QString error READ error NOTIFY errorChanged)
    Q_PROPERTY(bool informed READ informed NOTIFY infoChanged)
    Q_PROPERTY(QString info READ info NOTIFY infoChanged)
    Q_PROPERTY(bool loading READ loading NOTIFY loadingChanged)
    Q_PROPERTY(bool goToReset READ goToReset WRITE setGoToReset NOTIFY goToResetChanged)
    Q_PROPERTY(bool incomplete READ incomplete NOTIFY incompleteChanged)

public:
    /// Between the server's answer and the code screen, so that the answer can be read.
    static constexpr std::chrono::milliseconds readingTime{600};

    explicit ForgotPasswordViewModel(QObject *parent = nullptr);

    QString email() const { return m_email; }
    void setEmail(const QString &email);
    /// The address as it is sent, and as the code screen gets it.
    QString trimmedEmail() const;
    /// Whether `error` has a value; the value itself may be an empty text that the server chose.
    bool failed() const { return m_error.has_value(); }
    QString error() const { return m_error.value_or(QString()); }
    /// Whether `info` has a value.
    bool informed() const { return m_info.has_value(); }
    QString info() const { return m_info.value_or(QString()); }
    bool loading() const { return m_loading; }
    /// A code is on its way: the code screen is due.
    bool goToReset() const { return m_goToReset; }
    void setGoToReset(bool go);
    /// Blanks count as text: what they mean is the server's to say.
    bool incomplete() const { return m_email.isEmpty(); }

    /// The screen has appeared, or no longer shows. Each time it appears with an empty field, the field gets
    /// the address that the sign-in screen had; what has been typed is never overwritten.
    Q_SLOT void follow(bool visible);
    /// Asks for a code. Does nothing while a request runs or the field is empty.
    Q_SLOT void submit();

Q_SIGNALS:
    void emailChanged();
    void errorChanged();
    void infoChanged();
    void loadingChanged();
    void goToResetChanged();
    void incompleteChanged();

private:
    QCoro::Task<> runSubmit();
    void setError(std::optional<QString> error);
    void setInfo(std::optional<QString> info);
    void setLoading(bool loading);

    AuthStore *m_auth = nullptr;
    Timing *m_timing = nullptr;
    QString m_prefillEmail;
    QString m_email;
    std::optional<QString> m_error;
    std::optional<QString> m_info;
    bool m_loading = false;
    bool m_goToReset = false;
};

} // namespace clockwell
