#include "SignupViewModel.h"

#include "TrimBlanks.h"
#include "net/Errors.h"
#include "net/Liveness.h"

#include <utility>

namespace clockwell {

SignupViewModel::SignupViewModel(QObject *parent) : FormViewModel(parent) {}

void SignupViewModel::setFullName(const QString &fullName)
{
    edit(m_fullName, fullName, &SignupViewModel::fullNameChanged);
}

void SignupViewModel::setEmail(const QString &email)
{
    edit(m_email, email, &SignupViewModel::emailChanged);
}

void SignupViewModel::setPhone(const QString &phone)
{
    edit(m_phone, phone, &SignupViewModel::phoneChanged);
}

void SignupViewModel::setCompanyCode(const QString &companyCode)
{
    edit(m_companyCode, companyCode, &SignupViewModel::companyCodeChanged);
}

void SignupViewModel::setPassword(const QString &password)
{
    edit(m_password, password, &SignupViewModel::passwordChanged);
}

void SignupViewModel::submit()
{
    if (loading() || incomplete())
        return; // the Enter key gets here even while the button is disabled
    runSubmit();
}

QCoro::Task<> SignupViewModel::runSubmit()
{
    setError(std::nullopt);
    setSentEmail(trimBlanks(m_email));
    const BusyFlag busy(this, &SignupViewModel::setLoading);
    try {
        co_await whileAlive(this,
                            m_auth->signup(m_fullName, m_sentEmail, m_phone, m_companyCode, m_password));
        setGoToOtp(true);
    } catch (const std::exception &error) {
        setError(errorText(error));
    }
}

void SignupViewModel::setSentEmail(const QString &email)
{
    if (email != std::exchange(m_sentEmail, email))
        Q_EMIT sentEmailChanged();
}

void SignupViewModel::setGoToOtp(bool go)
{
    if (go == std::exchange(m_goToOtp, go))
        return;
    Q_EMIT goToOtpChanged();
}

} // namespace clockwell
