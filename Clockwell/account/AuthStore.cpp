#include "AuthStore.h"

#include "AuthRequests.h"
#include "TrimBlanks.h"
#include "net/APIClient.h"
#include "net/DeviceFacts.h"
#include "net/Liveness.h"
#include "net/TokenStore.h"

using namespace Qt::StringLiterals;

namespace clockwell {

namespace {

std::optional<QString> absentIfEmpty(const QString &text)
{
    return text.isEmpty() ? std::nullopt : std::optional(text);
}

/// The account requests that need no session: one POST, no bearer token.
template <class Reply, class Body>
QCoro::Task<Reply> send(APIClient &api, QString path, Body body)
{
    return api.request<Reply>(std::move(path), u"POST"_s, {}, std::optional(std::move(body)), false);
}

} // namespace

AuthStore::AuthStore(APIClient &api, TokenStore &tokens, QObject *parent)
    : QObject(parent), m_api(api), m_tokens(tokens)
{}

QCoro::Task<bool> AuthStore::hasStoredToken()
{
    return m_api.perform<bool>([&tokens = m_tokens] {
        return tokens.load(TokenKey::accessToken).has_value() ||
               tokens.load(TokenKey::refreshToken).has_value();
    });
}

QCoro::Task<> AuthStore::storeTokens(const LoginResponse &reply)
{
    // A function of its own, because g++ 12 destroys lambda captures inside a co_await expression twice.
    return m_api.perform<void>([&tokens = m_tokens, access = reply.accessToken,
                                refresh = reply.refreshToken] { saveTokens(tokens, access, refresh); });
}

QCoro::Task<> AuthStore::bootstrap()
{
    const bool hasSession = co_await whileAlive(this, hasStoredToken());
    if (!hasSession) {
        setPhase(Phase::SignedOut);
        co_return;
    }
    try {
        setUser(co_await whileAlive(this,
                                    m_api.request<AuthUser>(u"auth/me"_s, u"GET"_s, {}, std::nullopt, true)));
        setPhase(Phase::SignedIn);
    } catch (const std::exception &) {
        // This includes being offline: a session that cannot be confirmed is ended.
        m_api.sessionChanged();
        clearTokens(m_tokens);
        setPhase(Phase::SignedOut);
    }
}

QCoro::Task<> AuthStore::login(QString email, QString password)
{
    const LoginBody body{email, password, currentDeviceId()};
    const auto reply = co_await whileAlive(this, send<LoginResponse>(m_api, u"auth/login"_s, body));
    m_api.sessionChanged();
    ++m_session;
    const auto session = m_session;
    co_await whileAlive(this, storeTokens(reply));
    if (session != m_session) { // signed out while the tokens were being stored
        clearTokens(m_tokens);
        co_return;
    }
    setUser(reply.user);
    setPhase(Phase::SignedIn);
}

QCoro::Task<> AuthStore::refreshMe()
{
    const auto session = m_session;
    try {
        auto user = co_await whileAlive(
            this, m_api.request<std::optional<AuthUser>>(u"auth/me"_s, u"GET"_s, {}, std::nullopt, true));
        if (user && session == m_session && m_phase == Phase::SignedIn)
            setUser(std::move(user));
    } catch (const std::exception &) {
        // Keeps the current user; an expired session is reported through SessionEvents.
    }
}

void AuthStore::logout()
{
    ++m_session;
    m_api.sessionChanged(); // first, so that a refresh in flight sees that its session has ended
    clearTokens(m_tokens);
    setUser(std::nullopt);
    setPhase(Phase::SignedOut);
}

QCoro::Task<SignupResponse> AuthStore::signup(QString fullName, QString email, QString phone,
                                              QString companyCode, QString password)
{
    return send<SignupResponse>(m_api, u"auth/signup"_s,
                                SignupBody{fullName, trimBlanks(email), absentIfEmpty(phone), password,
                                           currentDeviceId(), deviceModel(), u"iOS "_s + systemVersion(),
                                           absentIfEmpty(companyCode)});
}

QCoro::Task<MessageResponse> AuthStore::verifyOtp(QString email, QString code)
{
    return send<MessageResponse>(m_api, u"auth/verify-otp"_s, VerifyOtpBody{email, code});
}

QCoro::Task<MessageResponse> AuthStore::resendOtp(QString email)
{
    return send<MessageResponse>(m_api, u"auth/resend-otp"_s, EmailBody{email});
}

QCoro::Task<MessageResponse> AuthStore::forgotPassword(QString email)
{
    return send<MessageResponse>(m_api, u"auth/forgot-password"_s, EmailBody{email});
}

QCoro::Task<MessageResponse> AuthStore::resetPassword(QString email, QString code, QString newPassword)
{
    return send<MessageResponse>(m_api, u"auth/reset-password"_s,
                                 ResetPasswordBody{email, code, newPassword});
}

void AuthStore::setPhase(Phase phase)
{
    if (phase == m_phase)
        return;
    m_phase = phase;
    Q_EMIT phaseChanged();
}

void AuthStore::setUser(std::optional<AuthUser> user)
{
    m_user = std::move(user);
    Q_EMIT userChanged();
}

} // namespace clockwell
