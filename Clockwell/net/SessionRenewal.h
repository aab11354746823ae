#pragma once

#include "net/SessionGuard.h"

#include <QCoro/QCoroTask>
#include <QUrl>

#include <memory>

namespace clockwell {

class HttpTransport;
struct HttpReply;
class SessionEvents;
class TokenStore;

/// Exchanges the refresh token for a new pair; concurrent callers share one exchange. Lives on the client's
/// thread.
class SessionRenewal
{
public:
    SessionRenewal(QUrl endpoint, HttpTransport &transport, TokenStore &tokens, SessionEvents &events,
                   std::shared_ptr<SessionGuard> guard);

    /// Completes when the new tokens are stored. Throws APIError if there is no refresh token, if the server
    /// refuses (then it has deleted the tokens and announced the expiry) or if the session changed meanwhile.
    /// Throws TransportError or DecodingError without changing the tokens.
    QCoro::Task<> renew(SessionGuard::Epoch epoch);

private:
    QCoro::Task<> exchangeTokens(SessionGuard::Epoch epoch);
    QCoro::Task<HttpReply> sendRequest(QString refreshToken);
    void store(const QByteArray &body, SessionGuard::Epoch epoch);
    [[noreturn]] void expire(SessionGuard::Epoch epoch);

    const QUrl m_endpoint;
    HttpTransport &m_transport;
    TokenStore &m_tokens;
    SessionEvents &m_events;
    const std::shared_ptr<SessionGuard> m_guard;

    std::shared_ptr<QCoro::Task<>> m_running;
    SessionGuard::Epoch m_runningEpoch = 0;
};

} // namespace clockwell
