#pragma once

#include "AuthStore.h"
#include "FormViewModel.h"
#include "OtpPurpose.h"
#include "Timing.h"

#include <QCoroTask>
#include <QQmlParserStatus>

#include <memory>

namespace clockwell {

/// The fields, texts and actions of the code screen, for either purpose. Main thread only; `auth` and
/// `timing` are not owned. The seconds until the next resend are counted for as long as it lives.
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
    /// Seconds from a resend to the next one.
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
    /// Seconds until a code may be asked for again; never below 0.
    int resendIn() const { return m_resendIn; }
    bool resendLocked() const { return m_resendIn > 0; }
    QString resendTitle() const;
    /// Another code is being asked for.
    bool resending() const { return m_resending; }
    bool done() const { return m_done; }
    /// Fewer than six characters, or no new password where one is asked for.
    bool incomplete() const override;

    /// Takes what stands in the code field, filtered, and returns where the field's cursor belongs. Whenever
    /// the field shows something else than `code`, codeChanged asks it to follow, also if `code` is the same.
    Q_INVOKABLE int enterCode(const QString &text, int cursor);
    /// Enter in the code field: on to the new password, or, where that is not asked for, the submission.
    Q_SLOT void acceptCode();
    /// Sends the code. Does nothing while a submission runs or something is missing.
    Q_SLOT void submit();
    /// Asks for another code; can run beside a submission. A second tap while one is being asked for is not
    /// a second wish: each code makes the one before it worthless.
    Q_SLOT void resend();
    /// The confirmation has been read: takes `done` back and dismisses the screen, once.
    Q_SLOT void acknowledge();

Q_SIGNALS:
    void purposeChanged();
    void codeChanged();
    void newPasswordChanged();
    void resendInChanged();
    void resendingChanged();
    void doneChanged();
    void newPasswordWanted();
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
