#include "ForgotPasswordViewModel.h"

#include "TrimBlanks.h"
#include "net/Errors.h"
#include "net/Liveness.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace clockwell {

ForgotPasswordViewModel::ForgotPasswordViewModel(QObject *parent) : FormViewModel(parent) {}

void ForgotPasswordViewModel::setEmail(const QString &email)
{
    edit(m_email, email, &ForgotPasswordViewModel::emailChanged);
}

void ForgotPasswordViewModel::prefillIfVisible(bool visible)
{
    if (visible && m_email.isEmpty())
        setEmail(m_prefillEmail);
}

void ForgotPasswordViewModel::submit()
{
    if (loading() || incomplete())
        return; // the Enter key gets here even while the button is disabled
    runSubmit();
}

QCoro::Task<> ForgotPasswordViewModel::runSubmit()
{
    setError(std::nullopt);
    setInfo(std::nullopt);
    setSentEmail(trimBlanks(m_email));
    const BusyFlag busy(this, &ForgotPasswordViewModel::setLoading);
    try {
        const auto reply = co_await whileAlive(this, m_auth->forgotPassword(m_sentEmail));
        setInfo(reply.message.value_or(u"If that email is registered, a code was sent."_s));
        co_await whileAlive(this, m_timing->pause(readingTime));
        setGoToReset(true);
    } catch (const std::exception &error) {
        setError(errorText(error));
    }
}

void ForgotPasswordViewModel::setSentEmail(const QString &email)
{
    if (email != std::exchange(m_sentEmail, email))
        Q_EMIT sentEmailChanged();
}

void ForgotPasswordViewModel::setGoToReset(bool go)
{
    if (go == std::exchange(m_goToReset, go))
        return;
    Q_EMIT goToResetChanged();
}

} // namespace clockwell
