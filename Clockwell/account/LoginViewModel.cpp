#include "LoginViewModel.h"

#include "TrimBlanks.h"
#include "net/Errors.h"
#include "net/Liveness.h"

#include <utility>

namespace clockwell {

LoginViewModel::LoginViewModel(QObject *parent) : QObject(parent) {}

void LoginViewModel::setEmail(const QString &email)
{
    if (email == m_email)
        return;
    const bool wasIncomplete = incomplete();
    m_email = email;
    Q_EMIT emailChanged();
    if (incomplete() != wasIncomplete)
        Q_EMIT incompleteChanged();
}

void LoginViewModel::setPassword(const QString &password)
{
    if (password == m_password)
        return;
    const bool wasIncomplete = incomplete();
    m_password = password;
    Q_EMIT passwordChanged();
    if (incomplete() != wasIncomplete)
        Q_EMIT incompleteChanged();
}

void LoginViewModel::signIn()
{
    if (m_loading || incomplete())
        return; // Enter in the password field reaches this without passing the button
    runSignIn();
}

QCoro::Task<> LoginViewModel::runSignIn()
{
    setError(std::nullopt);
    setNeedsVerification(false);
    const BusyFlag loading(this, &LoginViewModel::setLoading);
    try {
        co_await whileAlive(this, m_auth->login(trimBlanks(m_email), m_password));
    } catch (const APIError &error) {
        setError(error.message);
        setNeedsVerification(error.code == QStringLiteral("EMAIL_NOT_VERIFIED"));
    } catch (const std::exception &error) {
        setError(errorText(error));
    }
}

void LoginViewModel::setError(std::optional<QString> error)
{
    if (error == m_error)
        return;
    m_error = std::move(error);
    Q_EMIT errorChanged();
}

void LoginViewModel::setLoading(bool loading)
{
    if (loading == std::exchange(m_loading, loading))
        return;
    Q_EMIT loadingChanged();
}

void LoginViewModel::setNeedsVerification(bool needed)
{
    if (needed == std::exchange(m_needsVerification, needed))
        return;
    Q_EMIT needsVerificationChanged();
}

} // namespace clockwell
