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

/// Exchanges the refresh token for a new pair, once for all who ask at the same time. Lives on the client's
/// thread.
class SessionRenewal
{
public:
    SessionRenewal(QUrl endpoint, HttpTransport &transport, TokenStore &tokens, SessionEvents &events,
                   std::shared_ptr<SessionGuard> guard);

    /// Returns when new tokens are stored. Throws APIError when there is nothing to renew, when the server
    /// refuses (then the tokens are gone and the expiry is announced) or when the session changed meanwhile;
    /// TransportError and DecodingError leave the tokens alone.
    QCoro::Task<> renewed(SessionGuard::Epoch epoch);

private:
    QCoro::Task<> renew(SessionGuard::Epoch epoch);
    QCoro::Task<HttpReply> ask(QString refreshToken);
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
