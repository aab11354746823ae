#include "ProfileViewModel.h"

#include "ProfileTexts.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace clockwell {

namespace {

const QString none = u"—"_s;

} // namespace

ProfileViewModel::ProfileViewModel(QObject *parent) : QObject(parent) {}

void ProfileViewModel::setAuth(AuthStore *auth)
{
    if (auth == m_auth)
        return;
    if (m_auth)
        m_auth->disconnect(this);
    m_auth = auth;
    if (auth)
        connect(auth, &AuthStore::userChanged, this, &ProfileViewModel::userChanged);
    Q_EMIT authChanged();
    Q_EMIT userChanged();
}

void ProfileViewModel::setShown(bool shown)
{
    if (std::exchange(m_shown, shown) == shown)
        return;
    Q_EMIT shownChanged();
    if (shown && m_complete)
        appeared();
}

void ProfileViewModel::componentComplete()
{
    m_complete = true;
    if (m_shown)
        appeared();
}

void ProfileViewModel::appeared()
{
    if (m_auth)
        m_auth->refreshMe();
}

const AuthUser *ProfileViewModel::user() const
{
    return m_auth && m_auth->user() ? &*m_auth->user() : nullptr;
}

QString ProfileViewModel::initials() const
{
    return initialsOf(fullName());
}

QString ProfileViewModel::fullName() const
{
    return user() ? user()->fullName : QString();
}

QString ProfileViewModel::email() const
{
    return user() ? user()->email : QString();
}

QString ProfileViewModel::role() const
{
    return user() ? roleText(user()->role) : none;
}

QString ProfileViewModel::phone() const
{
    return user() ? user()->phone.value_or(none) : none;
}

QString ProfileViewModel::status() const
{
    return user() ? statusText(user()->status) : none;
}

QString ProfileViewModel::spoken(const QString &label, const QString &value)
{
    return spokenRow(label, value);
}

void ProfileViewModel::setShowLogoutConfirm(bool show)
{
    if (std::exchange(m_showLogoutConfirm, show) != show)
        Q_EMIT showLogoutConfirmChanged();
}

void ProfileViewModel::setShowChangePassword(bool show)
{
    if (std::exchange(m_showChangePassword, show) != show)
        Q_EMIT showChangePasswordChanged();
}

void ProfileViewModel::signOut()
{
    setShowLogoutConfirm(false);
    if (m_auth)
        m_auth->logout();
}

} // namespace clockwell
