#include "ChangePasswordViewModel.h"

#include "AuthRequests.h"
#include "net/APIClient.h"
#include "net/Errors.h"
#include "net/Liveness.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace clockwell {

namespace {

// The body of a successful reply is ignored.
QCoro::Task<Empty> send(APIClient &api, ChangePasswordBody body)
{
    return api.request<Empty>(u"auth/change-password"_s, u"POST"_s, {}, std::optional(std::move(body)), true);
}

} // namespace

ChangePasswordViewModel::ChangePasswordViewModel(QObject *parent) : FormViewModel(parent) {}

void ChangePasswordViewModel::setCurrent(const QString &current)
{
    edit(m_current, current, &ChangePasswordViewModel::currentChanged);
}

void ChangePasswordViewModel::setNewPassword(const QString &newPassword)
{
    edit(m_newPassword, newPassword, &ChangePasswordViewModel::newPasswordChanged);
}

void ChangePasswordViewModel::submit()
{
    if (loading() || m_done || incomplete())
        return; // the Enter key gets here even while the button is disabled
    runSubmit();
}

QCoro::Task<> ChangePasswordViewModel::runSubmit()
{
    setError(std::nullopt);
    const BusyFlag busy(this, &ChangePasswordViewModel::setLoading);
    const ChangePasswordBody body{m_current, m_newPassword};
    try {
        co_await whileAlive(this, send(m_auth->api(), body));
        setDone(true);
    } catch (const std::exception &error) {
        setError(errorText(error));
    }
}

void ChangePasswordViewModel::acknowledge()
{
    if (!m_done)
        return;
    setDone(false);
    Q_EMIT dismissed();
}

void ChangePasswordViewModel::setDone(bool done)
{
    if (done != std::exchange(m_done, done))
        Q_EMIT doneChanged();
}

} // namespace clockwell
