#include "OtpViewModel.h"

#include "CodeFilter.h"
#include "net/Errors.h"
#include "net/Liveness.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace clockwell {

OtpViewModel::OtpViewModel(QObject *parent) : FormViewModel(parent) {}

void OtpViewModel::componentComplete()
{
    m_ticks = m_timing->every(
        std::chrono::seconds(1), [this] { countDown(); });
}

QString OtpViewModel::title() const
{
    return resetting() ? u"Reset password"_s : u"Verify email"_s;
}

QString OtpViewModel::subtitle() const
{
    return resetting() ? u"Reset your password"_s : u"Verify your email"_s;
}

QString OtpViewModel::submitTitle() const
{
    return resetting() ? u"Reset password"_s : u"Verify"_s;
}

QString OtpViewModel::doneMessage() const
{
    return resetting()
               ? u"Password updated. You can now sign in with your new password."_s
               : u"Email verified. Your account is pending admin approval — you'll be able to sign in once approved."_s;
}

QString OtpViewModel::resendTitle() const
{
    return resendLocked() ? u"Resend code in %1s"_s.arg(m_resendIn) : u"Resend code"_s;
}

bool OtpViewModel::incomplete() const
{
    return characterCount(m_code) < codeLength || (resetting() && m_newPassword.isEmpty());
}

int OtpViewModel::enterCode(const QString &text, int cursor)
{
    const FilteredCode filtered = filterCode(text, cursor);
    const bool wasIncomplete = incomplete();
    const bool changed = filtered.code != m_code;
    m_code = filtered.code;
    if (changed || text != m_code)
        Q_EMIT codeChanged();
    if (incomplete() != wasIncomplete)
        Q_EMIT incompleteChanged();
    return static_cast<int>(filtered.cursor);
}

void OtpViewModel::setNewPassword(const QString &password)
{
    edit(m_newPassword, password, &OtpViewModel::newPasswordChanged);
}

void OtpViewModel::acceptCode()
{
    if (resetting())
        Q_EMIT newPasswordFocusRequested();
    else
        submit();
}

void OtpViewModel::submit()
{
    if (loading() || m_done || incomplete())
        return; // the Enter key gets here even while the button is disabled
    runSubmit();
}

void OtpViewModel::resend()
{
    if (m_resending || resendLocked())
        return;
    runResend();
}

void OtpViewModel::acknowledge()
{
    if (!m_done)
        return;
    setDone(false);
    Q_EMIT dismissed();
}

QCoro::Task<MessageResponse> OtpViewModel::request()
{
    return resetting() ? m_auth->resetPassword(m_email, m_code, m_newPassword)
                       : m_auth->verifyOtp(m_email, m_code);
}

QCoro::Task<> OtpViewModel::runSubmit()
{
    setError(std::nullopt);
    setInfo(std::nullopt);
    const BusyFlag busy(this, &OtpViewModel::setLoading);
    try {
        co_await whileAlive(this, request());
        setDone(true);
    } catch (const std::exception &error) {
        setError(errorText(error));
    }
}

QCoro::Task<> OtpViewModel::runResend()
{
    const BusyFlag resending(this, &OtpViewModel::setResending);
    setError(std::nullopt);
    setInfo(std::nullopt);
    try {
        const auto reply = co_await whileAlive(this, m_auth->resendOtp(m_email));
        setInfo(reply.message.value_or(u"A new code was sent."_s));
        setResendIn(resendPause);
    } catch (const std::exception &error) {
        setError(errorText(error));
    }
}

void OtpViewModel::countDown()
{
    if (m_resendIn >= 1)
        setResendIn(m_resendIn - 1);
}

void OtpViewModel::setResendIn(int seconds)
{
    if (seconds == std::exchange(m_resendIn, seconds))
        return;
    Q_EMIT resendInChanged();
}

void OtpViewModel::setResending(bool resending)
{
    if (resending != std::exchange(m_resending, resending))
        Q_EMIT resendingChanged();
}

void OtpViewModel::setDone(bool done)
{
    if (done == std::exchange(m_done, done))
        return;
    Q_EMIT doneChanged();
}

} // namespace clockwell
