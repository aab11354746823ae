#pragma once

#include "AuthStore.h"
#include "FormViewModel.h"
#include "Timing.h"

#include <QCoroTask>

#include <chrono>

namespace clockwell {

/// The fields and the one action of the screen that asks for a reset code. Main thread only; `auth` and
/// `timing` are not owned.
class ForgotPasswordViewModel : public clockwell::FormViewModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(clockwell::AuthStore *auth MEMBER m_auth REQUIRED)
    Q_PROPERTY(clockwell::Timing *timing MEMBER m_timing REQUIRED)
    Q_PROPERTY(QString prefillEmail MEMBER m_prefillEmail REQUIRED)
    Q_PROPERTY(QString email READ email WRITE setEmail NOTIFY emailChanged)
    Q_PROPERTY(QString sentEmail READ sentEmail NOTIFY sentEmailChanged)
    Q_PROPERTY(bool goToReset READ goToReset WRITE setGoToReset NOTIFY goToResetChanged)

public:
    /// Between the server's answer and the code screen, so that the answer can be read.
    static constexpr std::chrono::milliseconds readingTime{600};

    explicit ForgotPasswordViewModel(QObject *parent = nullptr);

    QString email() const { return m_email; }
    void setEmail(const QString &email);
    /// The address of the last request, which is the one that the code is for: the field may say another by
    /// now.
    QString sentEmail() const { return m_sentEmail; }
    /// A code is on its way: the code screen is due.
    bool goToReset() const { return m_goToReset; }
    void setGoToReset(bool go);
    bool incomplete() const override { return m_email.isEmpty(); }

    /// The screen has appeared, or no longer shows. Each time it appears with an empty field, the field gets
    /// the address that the sign-in screen had; what has been typed is never overwritten.
    Q_SLOT void follow(bool visible);
    /// Asks for a code. Does nothing while a request runs or the field is empty.
    Q_SLOT void submit();

Q_SIGNALS:
    void emailChanged();
    void sentEmailChanged();
    void goToResetChanged();

private:
    QCoro::Task<> runSubmit();
    void setSentEmail(const QString &email);

    AuthStore *m_auth = nullptr;
    Timing *m_timing = nullptr;
    QString m_prefillEmail;
    QString m_email;
    QString m_sentEmail;
    bool m_goToReset = false;
};

} // namespace clockwell
