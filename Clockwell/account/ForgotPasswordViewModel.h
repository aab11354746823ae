#pragma once

#include "AuthStore.h"
#include "FormViewModel.h"
#include "Timing.h"

#include <QCoroTask>

#include <chrono>

namespace clockwell {

/// The field and the submit action of the screen that requests a reset code. Main thread only; `auth` and
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
    /// The delay between the server's reply and the code screen, so that the user can read the reply.
    static constexpr std::chrono::milliseconds readingTime{600};

    explicit ForgotPasswordViewModel(QObject *parent = nullptr);

    QString email() const { return m_email; }
    void setEmail(const QString &email);
    /// The address sent in the last request, which the code belongs to; the field may have been edited since.
    QString sentEmail() const { return m_sentEmail; }
    /// A code was requested: the code screen is to be opened.
    bool goToReset() const { return m_goToReset; }
    void setGoToReset(bool go);
    bool incomplete() const override { return m_email.isEmpty(); }

    /// Called whenever the visibility of the screen changes: each time the screen appears, an empty field is
    /// filled with the address from the sign-in screen. Typed text is never overwritten.
    Q_SLOT void prefillIfVisible(bool visible);
    /// Requests a code. Does nothing while a request runs or the field is empty.
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
