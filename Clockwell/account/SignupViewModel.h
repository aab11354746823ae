#pragma once

#include "AuthStore.h"
#include "FormViewModel.h"

#include <QCoroTask>

namespace clockwell {

/// The fields and the submit action of the sign-up screen. Main thread only; `auth` is not owned.
class SignupViewModel : public clockwell::FormViewModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(clockwell::AuthStore *auth MEMBER m_auth REQUIRED)
    Q_PROPERTY(QString fullName READ fullName WRITE setFullName NOTIFY fullNameChanged)
    Q_PROPERTY(QString email READ email WRITE setEmail NOTIFY emailChanged)
    Q_PROPERTY(QString sentEmail READ sentEmail NOTIFY sentEmailChanged)
    Q_PROPERTY(QString phone READ phone WRITE setPhone NOTIFY phoneChanged)
    Q_PROPERTY(QString companyCode READ companyCode WRITE setCompanyCode NOTIFY companyCodeChanged)
    Q_PROPERTY(QString password READ password WRITE setPassword NOTIFY passwordChanged)
    Q_PROPERTY(bool goToOtp READ goToOtp WRITE setGoToOtp NOTIFY goToOtpChanged)

public:
    explicit SignupViewModel(QObject *parent = nullptr);

    QString fullName() const { return m_fullName; }
    void setFullName(const QString &fullName);
    QString email() const { return m_email; }
    void setEmail(const QString &email);
    /// The address sent in the last request, which the code belongs to; the field may have been edited since.
    QString sentEmail() const { return m_sentEmail; }
    QString phone() const { return m_phone; }
    void setPhone(const QString &phone);
    QString companyCode() const { return m_companyCode; }
    void setCompanyCode(const QString &companyCode);
    QString password() const { return m_password; }
    void setPassword(const QString &password);
    /// The account was created: the code screen is to be opened.
    bool goToOtp() const { return m_goToOtp; }
    void setGoToOtp(bool go);
    /// A required field is empty.
    bool incomplete() const override
    {
        return m_fullName.isEmpty() || m_email.isEmpty() || m_password.isEmpty();
    }

    /// Requests the account. Does nothing while a request runs or a required field is empty.
    Q_SLOT void submit();

Q_SIGNALS:
    void fullNameChanged();
    void emailChanged();
    void sentEmailChanged();
    void phoneChanged();
    void companyCodeChanged();
    void passwordChanged();
    void goToOtpChanged();

private:
    QCoro::Task<> runSubmit();
    void setSentEmail(const QString &email);

    AuthStore *m_auth = nullptr;
    QString m_fullName;
    QString m_email;
    QString m_sentEmail;
    QString m_phone;
    QString m_companyCode;
    QString m_password;
    bool m_goToOtp = false;
};

} // namespace clockwell
