#include "LoginViewModel.h"

#include "TrimBlanks.h"
#include "net/Errors.h"
#include "net/Liveness.h"

#include <utility>

namespace clockwell {

LoginViewModel::LoginViewModel(QObject *parent) : FormViewModel(parent) {}

void LoginViewModel::setEmail(const QString &email)
{
    edit(m_email, email, &LoginViewModel::emailChanged);
}

void LoginViewModel::setPassword(const QString &password)
{
    edit(m_password, password, &LoginViewModel::passwordChanged);
}

void LoginViewModel::signIn()
{
    if (loading() || incomplete())
        return; // the Enter key gets here even while the button is disabled
    runSignIn();
}

QCoro::Task<> LoginViewModel::runSignIn()
{
    setError(std::nullopt);
    setNeedsVerification(false);
    const BusyFlag busy(this, &LoginViewModel::setLoading);
    try {
        co_await whileAlive(this, m_auth->login(trimBlanks(m_email), m_password));
    } catch (const APIError &error) {
        setError(error.message);
        setNeedsVerification(error.code == QStringLiteral("EMAIL_NOT_VERIFIED"));
    } catch (const std::exception &error) {
        setError(errorText(error));
    }
}

void LoginViewModel::setNeedsVerification(bool needed)
{
    if (needed == std::exchange(m_needsVerification, needed))
        return;
    Q_EMIT needsVerificationChanged();
}

} // namespace clockwell
