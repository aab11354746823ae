#pragma once

#include "AuthStore.h"
#include "FormViewModel.h"
#include "OtpPurpose.h"
#include "Timing.h"

#include <QCoroTask>
#include <QQmlParserStatus>

#include <memory>

namespace clockwell {

/// The fields, texts and actions of the code screen, for either purpose. The resend countdown runs as long as
/// this object exists. Main thread only; `auth` and `timing` are not owned.
class OtpViewModel : public clockwell::FormViewModel, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    QML_ELEMENT
    Q_PROPERTY(clockwell::AuthStore *auth MEMBER m_auth REQUIRED)
    Q_PROPERTY(clockwell::Timing *timing MEMBER m_timing REQUIRED)
    Q_PROPERTY(QString email MEMBER m_email REQUIRED)
    Q_PROPERTY(int purpose MEMBER m_purpose NOTIFY purposeChanged REQUIRED)
    Q_PROPERTY(bool resetting READ resetting NOTIFY purposeChanged)
    Q_PROPERTY(QString title READ title NOTIFY purposeChanged)
    Q_PROPERTY(QString subtitle READ subtitle NOTIFY purposeChanged)
    Q_PROPERTY(QString submitTitle READ submitTitle NOTIFY purposeChanged)
    Q_PROPERTY(QString doneMessage READ doneMessage NOTIFY purposeChanged)
    Q_PROPERTY(QString code READ code NOTIFY codeChanged)
    Q_PROPERTY(QString newPassword READ newPassword WRITE setNewPassword NOTIFY newPasswordChanged)
    Q_PROPERTY(int resendIn READ resendIn NOTIFY resendInChanged)
    Q_PROPERTY(bool resendLocked READ resendLocked NOTIFY resendInChanged)
    Q_PROPERTY(QString resendTitle READ resendTitle NOTIFY resendInChanged)
    Q_PROPERTY(bool resending READ resending NOTIFY resendingChanged)
    Q_PROPERTY(bool done READ done NOTIFY doneChanged)

public:
    /// Seconds from one resend to the next.
    static constexpr int resendPause = 60;

    explicit OtpViewModel(QObject *parent = nullptr);

    void classBegin() override {}
    void componentComplete() override;

    bool resetting() const { return m_purpose == OtpPurpose::ResetPassword; }
    QString title() const;
    QString subtitle() const;
    QString submitTitle() const;
    QString doneMessage() const;

    QString code() const { return m_code; }
    QString newPassword() const { return m_newPassword; }
    void setNewPassword(const QString &password);
    /// Seconds until a code may be requested again; never below 0.
    int resendIn() const { return m_resendIn; }
    bool resendLocked() const { return m_resendIn > 0; }
    QString resendTitle() const;
    /// A resend request is running.
    bool resending() const { return m_resending; }
    bool done() const { return m_done; }
    /// The code has fewer than six characters, or a required new password is empty.
    bool incomplete() const override;

    /// Sets `code` to the filtered text of the code field and returns the field's new cursor position. Emits
    /// codeChanged whenever the field's text differs from `code`, even if `code` stays the same, so that the
    /// field is updated.
    Q_INVOKABLE int enterCode(const QString &text, int cursor);
    /// Enter in the code field: moves to the new password field if there is one, otherwise submits.
    Q_SLOT void acceptCode();
    /// Sends the code. Does nothing while a submission runs, a field is incomplete or `done` is set.
    Q_SLOT void submit();
    /// Requests another code; may run at the same time as a submission. Does nothing while the resend is
    /// locked or such a request runs, because each code invalidates the one before it.
    Q_SLOT void resend();
    /// The user has closed the success alert: resets `done` and emits dismissed, once.
    Q_SLOT void acknowledge();

Q_SIGNALS:
    void purposeChanged();
    void codeChanged();
    void newPasswordChanged();
    void resendInChanged();
    void resendingChanged();
    void doneChanged();
    void newPasswordFocusRequested();
    void dismissed();

private:
    QCoro::Task<> runSubmit();
    QCoro::Task<> runResend();
    QCoro::Task<MessageResponse> request();
    void countDown();
    void setResendIn(int seconds);
    void setDone(bool done);
    void setResending(bool resending);

    AuthStore *m_auth = nullptr;
    Timing *m_timing = nullptr;
    QString m_email;
    int m_purpose = OtpPurpose::VerifyEmail;
    QString m_code;
    QString m_newPassword;
    bool m_resending = false;
    int m_resendIn = 0;
    bool m_done = false;
    std::unique_ptr<QObject> m_ticks;
};

} // namespace clockwell
