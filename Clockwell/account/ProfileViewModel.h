#pragma once

#include "AuthStore.h"

#include <QObject>
#include <QPointer>
#include <QQmlParserStatus>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// The signed-in user as shown on the profile. Requests the user again each time the screen appears, and
/// shows the current one until the reply arrives; a failure changes nothing. Main thread only; `auth` is not
/// owned.
class ProfileViewModel : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    QML_ELEMENT
    Q_PROPERTY(clockwell::AuthStore *auth READ auth WRITE setAuth NOTIFY authChanged REQUIRED)
    /// Whether the screen is visible.
    Q_PROPERTY(bool shown READ isShown WRITE setShown NOTIFY shownChanged)
    Q_PROPERTY(QString initials READ initials NOTIFY userChanged)
    Q_PROPERTY(QString fullName READ fullName NOTIFY userChanged)
    Q_PROPERTY(QString email READ email NOTIFY userChanged)
    Q_PROPERTY(QString role READ role NOTIFY userChanged)
    Q_PROPERTY(QString phone READ phone NOTIFY userChanged)
    Q_PROPERTY(QString status READ status NOTIFY userChanged)
    Q_PROPERTY(bool showLogoutConfirm READ showsLogoutConfirm WRITE setShowLogoutConfirm NOTIFY
                   showLogoutConfirmChanged)
    Q_PROPERTY(bool showChangePassword READ showsChangePassword WRITE setShowChangePassword NOTIFY
                   showChangePasswordChanged)

public:
    explicit ProfileViewModel(QObject *parent = nullptr);

    AuthStore *auth() const { return m_auth; }
    void setAuth(AuthStore *auth);
    bool isShown() const { return m_shown; }
    void setShown(bool shown);

    QString initials() const;
    QString fullName() const;
    QString email() const;
    /// A dash without a user, as are phone and status.
    QString role() const;
    /// Also a dash if the user has no phone number.
    QString phone() const;
    QString status() const;

    /// A row of the screen as it is read out.
    Q_INVOKABLE static QString spoken(const QString &label, const QString &value);

    bool showsLogoutConfirm() const { return m_showLogoutConfirm; }
    void setShowLogoutConfirm(bool show);
    bool showsChangePassword() const { return m_showChangePassword; }
    void setShowChangePassword(bool show);

    void classBegin() override { m_complete = false; }
    void componentComplete() override;

public Q_SLOTS:
    /// Called when the user confirms; the user is signed out when it returns.
    void signOut();

Q_SIGNALS:
    void authChanged();
    void shownChanged();
    void userChanged();
    void showLogoutConfirmChanged();
    void showChangePasswordChanged();

private:
    const AuthUser *user() const;
    void appeared();

    QPointer<AuthStore> m_auth;
    bool m_shown = false;
    bool m_showLogoutConfirm = false;
    bool m_showChangePassword = false;
    bool m_complete = true; // false while QML sets the properties one by one
};

} // namespace clockwell
