#pragma once

#include "AuthStore.h"

#include <QCoroTask>
#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace clockwell {

/// The fields and the one action of the sheet that changes the password. The session stays as it is: the
/// request goes straight to the store's client. Main thread only; `auth` is not owned.
class ChangePasswordViewModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(clockwell::AuthStore *auth MEMBER m_auth REQUIRED)
    Q_PROPERTY(QString current READ current WRITE setCurrent NOTIFY currentChanged)
    Q_PROPERTY(QString newPassword READ newPassword WRITE setNewPassword NOTIFY newPasswordChanged)
    Q_PROPERTY(bool failed READ failed NOTIFY errorChanged)
    Q_PROPERTY(QString error READ error NOTIFY errorChanged)
    Q_PROPERTY(bool loading READ loading NOTIFY loadingChanged)
    Q_PROPERTY(bool done READ done NOTIFY doneChanged)
    Q_PROPERTY(bool incomplete READ incomplete NOTIFY incompleteChanged)

public:
    explicit ChangePasswordViewModel(QObject *parent = nullptr);

    QString current() const { return m_current; }
    void setCurrent(const QString &current);
    QString newPassword() const { return m_newPassword; }
    void setNewPassword(const QString &newPassword);
    /// Whether `error` has a value; the value itself may be an empty text that the server chose.
    bool failed() const { return m_error.has_value(); }
    QString error() const { return m_error.value_or(QString()); }
    bool loading() const { return m_loading; }
    bool done() const { return m_done; }
    /// A field is empty. Blanks count as text, and what a password has to be is the server's to say.
    bool incomplete() const { return m_current.isEmpty() || m_newPassword.isEmpty(); }

public Q_SLOTS:
    /// Sends both as they are. Does nothing while a request runs, a field is missing or it is done.
    void submit();
    /// The success has been read.
    void acknowledge();

Q_SIGNALS:
    void currentChanged();
    void newPasswordChanged();
    void errorChanged();
    void loadingChanged();
    void doneChanged();
    void incompleteChanged();
    /// The sheet is to go.
    void dismissed();

private:
    using Signal = void (ChangePasswordViewModel::*)();

    void edit(QString &field, const QString &text, Signal changed);
    QCoro::Task<> runSubmit();
    void setError(std::optional<QString> error);
    void setLoading(bool loading);
    void setDone(bool done);

    AuthStore *m_auth = nullptr;
    QString m_current;
    QString m_newPassword;
    std::optional<QString> m_error;
    bool m_loading = false;
    bool m_done = false;
};

} // namespace clockwell
