#pragma once

#include "net/WireRecords.h"

#include <QCoroTask>
#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace clockwell {

class APIClient;
class TokenStore;

/// Owns who is signed in: the phase that the whole interface follows, the user, and the token pair's way into
/// and out of the token store. It keeps no token in memory.
///
/// Main thread only; the coroutines resume there. The client and the token store are not owned and outlive
/// it. Operations that return a Task with a result, and login, rethrow the request's error unchanged (see
/// net/Errors.h) and leave the state as it was; bootstrap and refreshMe never fail outward. A store that dies
/// in the middle of an operation is left alone: the operation then ends with Abandoned (net/Liveness.h).
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

    /// For requests of the signed-in user that change nothing here. Not owned.
    APIClient &api() const { return m_api; }

    /// Restores the session that the token store holds; ends in SignedIn or SignedOut.
    QCoro::Task<> bootstrap();
    /// Sends both texts as they are.
    QCoro::Task<> login(QString email, QString password);
    /// Asks for the user again; keeps the present one on failure.
    QCoro::Task<> refreshMe();
    /// Local and immediate: deletes both tokens, then forgets the user. Sends nothing.
    void logout();

    /// Trims the e-mail of blanks; an empty phone or company code is left out of the body.
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
    // Both run on the client's thread: the secret service may take a while, or ask for a password of its own.
    QCoro::Task<bool> hasStoredToken();
    QCoro::Task<> storeTokens(const LoginResponse &reply);
    void setPhase(Phase phase);
    void setUser(std::optional<AuthUser> user);

    APIClient &m_api;
    TokenStore &m_tokens;
    Phase m_phase = Phase::Loading;
    std::optional<AuthUser> m_user;
    quint64 m_session = 0; ///< counts sign-ins and sign-outs: tells an answer of an earlier session
};

} // namespace clockwell
