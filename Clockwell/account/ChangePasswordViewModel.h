#pragma once

#include "AuthStore.h"
#include "FormViewModel.h"

#include <QCoroTask>

namespace clockwell {

/// The fields and the one action of the sheet that changes the password. The session stays as it is: the
/// request goes straight to the store's client. Main thread only; `auth` is not owned.
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
    /// Sends both as they are. Does nothing while a request runs, a field is missing or it is done.
    void submit();
    /// The success has been read.
    void acknowledge();

Q_SIGNALS:
    void currentChanged();
    void newPasswordChanged();
    void doneChanged();
    /// The sheet is to go.
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
