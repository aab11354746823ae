#pragma once

#include "AuthStore.h"
#include "FormViewModel.h"

#include <QCoroTask>

namespace clockwell {

/// The fields and the submit action of the change-password sheet. It does not change the session: the request
/// goes directly to the store's client. Main thread only; `auth` is not owned.
class ChangePasswordViewModel : public clockwell::FormViewModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(clockwell::AuthStore *auth MEMBER m_auth REQUIRED)
    Q_PROPERTY(QString current READ current WRITE setCurrent NOTIFY currentChanged)
    Q_PROPERTY(QString newPassword READ newPassword WRITE setNewPassword NOTIFY newPasswordChanged)
    Q_PROPERTY(bool done READ done NOTIFY doneChanged)

public:
    explicit ChangePasswordViewModel(QObject *parent = nullptr);

    QString current() const { return m_current; }
    void setCurrent(const QString &current);
    QString newPassword() const { return m_newPassword; }
    void setNewPassword(const QString &newPassword);
    bool done() const { return m_done; }
    bool incomplete() const override { return m_current.isEmpty() || m_newPassword.isEmpty(); }

public Q_SLOTS:
    /// Sends both passwords unchanged. Does nothing while a request runs, a field is empty or `done` is set.
    void submit();
    /// The user has closed the success alert: resets `done` and emits dismissed, once.
    void acknowledge();

Q_SIGNALS:
    void currentChanged();
    void newPasswordChanged();
    void doneChanged();
    /// Asks the view to close the sheet.
    void dismissed();

private:
    QCoro::Task<> runSubmit();
    void setDone(bool done);

    AuthStore *m_auth = nullptr;
    QString m_current;
    QString m_newPassword;
    bool m_done = false;
};

} // namespace clockwell
