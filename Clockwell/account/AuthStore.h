#pragma once

#include "net/WireRecords.h"

#include <QCoroTask>
#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace clockwell {

class APIClient;
class TokenStore;

/// The authentication state: the phase that decides which interface is shown, and the signed-in user. Saves
/// the token pair in the token store and deletes it there; keeps no token in memory.
///
/// Main thread only; the coroutines resume there. The client and the token store are not owned and must
/// outlive it. Operations that return a Task with a result, and login, rethrow the request's error unchanged
/// (see net/Errors.h) and leave the state unchanged; bootstrap and refreshMe do not report request errors. If
/// the store is destroyed during an operation, the operation ends with Abandoned (net/Liveness.h).
class AuthStore : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Built by the composition root")
    Q_PROPERTY(Phase phase READ phase NOTIFY phaseChanged)
    Q_PROPERTY(QString fullName READ fullName NOTIFY userChanged)

public:
    enum class Phase { Loading, SignedOut, SignedIn };
    Q_ENUM(Phase)

    AuthStore(APIClient &api, TokenStore &tokens, QObject *parent = nullptr);

    Phase phase() const { return m_phase; }
    const std::optional<AuthUser> &user() const { return m_user; }
    /// The signed-in user's name as the server sent it; empty when nobody is signed in.
    QString fullName() const { return m_user ? m_user->fullName : QString(); }

    /// For requests of the signed-in user that do not change the authentication state. Not owned.
    APIClient &api() const { return m_api; }

    /// Restores the session that the token store holds; ends in SignedIn or SignedOut.
    QCoro::Task<> bootstrap();
    /// Sends both arguments unchanged.
    QCoro::Task<> login(QString email, QString password);
    /// Requests the user again; keeps the current one on failure.
    QCoro::Task<> refreshMe();
    /// Local and immediate: deletes both tokens, then forgets the user. Sends nothing.
    void logout();

    /// Trims blanks from the e-mail; omits an empty phone or company code from the body.
    QCoro::Task<SignupResponse> signup(QString fullName, QString email, QString phone, QString companyCode,
                                       QString password);
    QCoro::Task<MessageResponse> verifyOtp(QString email, QString code);
    QCoro::Task<MessageResponse> resendOtp(QString email);
    QCoro::Task<MessageResponse> forgotPassword(QString email);
    QCoro::Task<MessageResponse> resetPassword(QString email, QString code, QString newPassword);

Q_SIGNALS:
    void phaseChanged();
    void userChanged();

private:
    // Both run on the client's thread, because the secret service may block, for example to ask for its own
    // password.
    QCoro::Task<bool> hasStoredToken();
    QCoro::Task<> storeTokens(const LoginResponse &reply);
    void setPhase(Phase phase);
    void setUser(std::optional<AuthUser> user);

    APIClient &m_api;
    TokenStore &m_tokens;
    Phase m_phase = Phase::Loading;
    std::optional<AuthUser> m_user;
    quint64 m_session = 0; ///< counts sign-ins and sign-outs, to recognize replies to an earlier session
};

} // namespace clockwell
