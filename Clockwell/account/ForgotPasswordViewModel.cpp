#include "ForgotPasswordViewModel.h"

#include "TrimBlanks.h"
#include "net/Errors.h"
#include "net/Liveness.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace clockwell {

ForgotPasswordViewModel::ForgotPasswordViewModel(QObject *parent) : QObject(parent) {}

void ForgotPasswordViewModel::setEmail(const QString &email)
{
    if (email == m_email)
        return;
    const bool wasIncomplete = incomplete();
    m_email = email;
    Q_EMIT emailChanged();
    if (incomplete() != wasIncomplete)
        Q_EMIT incompleteChanged();
}

QString ForgotPasswordViewModel::trimmedEmail() const
{
    return trimBlanks(m_email);
}

void ForgotPasswordViewModel::follow(bool visible)
{
    if (visible && m_email.isEmpty())
        setEmail(m_prefillEmail);
}

void ForgotPasswordViewModel::submit()
{
    if (m_loading || incomplete())
        return; // Enter in the field reaches this without passing the button
    runSubmit();
}

QCoro::Task<> ForgotPasswordViewModel::runSubmit()
{
    setError(std::nullopt);
    setInfo(std::nullopt);
    const BusyFlag loading(this, &ForgotPasswordViewModel::setLoading);
    try {
        const auto reply = co_await whileAlive(this, m_auth->forgotPassword(trimmedEmail()));
        setInfo(reply.message.value_or(u"If that email is registered, a code was sent."_s));
        co_await whileAlive(this, m_timing->pause(readingTime));
        setGoToReset(true);
    } catch (const std::exception &error) {
        setError(errorText(error));
    }
}

void ForgotPasswordViewModel::setError(std::optional<QString> error)
{
    if (error == m_error)
        return;
    m_error = std::move(error);
    Q_EMIT errorChanged();
}

void ForgotPasswordViewModel::setInfo(std::optional<QString> info)
{
    if (info == m_info)
        return;
    m_info = std::move(info);
    Q_EMIT infoChanged();
}

void ForgotPasswordViewModel::setLoading(bool loading)
{
    if (loading == std::exchange(m_loading, loading))
        return;
    Q_EMIT loadingChanged();
}

void ForgotPasswordViewModel::setGoToReset(bool go)
{
    if (go == std::exchange(m_goToReset, go))
        return;
    Q_EMIT goToResetChanged();
}

} // namespace clockwell
