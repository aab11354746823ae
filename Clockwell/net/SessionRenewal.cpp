#include "net/SessionRenewal.h"

#include "net/Decoding.h"
#include "net/Encoding.h"
#include "net/HttpTransport.h"
#include "net/SessionErrors.h"
#include "net/SessionEvents.h"
#include "net/TokenStore.h"

namespace clockwell {

namespace {

struct Body
{
    QString refreshToken;
};
BOOST_DESCRIBE_STRUCT(Body, (), (refreshToken))

} // namespace

SessionRenewal::SessionRenewal(QUrl endpoint, HttpTransport &transport, TokenStore &tokens,
                               SessionEvents &events, std::shared_ptr<SessionGuard> guard)
    : m_endpoint(std::move(endpoint)),
      m_transport(transport),
      m_tokens(tokens),
      m_events(events),
      m_guard(std::move(guard))
{}

QCoro::Task<> SessionRenewal::renewed(SessionGuard::Epoch epoch)
{
    // Nobody joins a renewal of an earlier session: it can only fail.
    if (!m_running || m_runningEpoch != epoch) {
        m_runningEpoch = epoch;
        m_running = std::make_shared<QCoro::Task<>>(renew(epoch));
    }
    const std::shared_ptr<QCoro::Task<>> running = m_running;
    std::exception_ptr failure;
    try {
        co_await *running;
    } catch (...) {
        failure = std::current_exception();
    }
    // All who wait resume one after the other before anything else runs here; the first one clears the way.
    if (m_running == running)
        m_running.reset();
    if (failure)
        std::rethrow_exception(failure);
}

QCoro::Task<> SessionRenewal::renew(SessionGuard::Epoch epoch)
{
    const std::optional<QString> refreshToken = m_tokens.load(TokenKey::refreshToken);
    if (!refreshToken)
        throw sessionGone();
    HttpReply reply;
    std::exception_ptr failure;
    try {
        reply = co_await ask(*refreshToken);
    } catch (...) {
        failure = std::current_exception();
    }
    if (m_guard->current() != epoch)
        throw sessionGone();
    if (failure)
        std::rethrow_exception(failure);
    if (reply.status && *reply.status / 100 == 2)
        store(reply.body, epoch);
    else
        expire(epoch);
}

QCoro::Task<HttpReply> SessionRenewal::ask(QString refreshToken)
{
    HttpRequest request{
        m_endpoint, {"Content-Type: application/json"}, encodeBody(Body{std::move(refreshToken)})};
    co_return co_await m_transport.send(std::move(request));
}

void SessionRenewal::store(const QByteArray &body, SessionGuard::Epoch epoch)
{
    const TokenPair pair = decode<TokenPair>(body);
    const bool stored = m_guard->write(
        epoch, [&] { saveTokens(m_tokens, pair.accessToken, pair.refreshToken); },
        [&] { clearTokens(m_tokens); });
    if (!stored)
        throw sessionGone();
}

void SessionRenewal::expire(SessionGuard::Epoch epoch)
{
    if (!m_guard->write(epoch, [&] { clearTokens(m_tokens); }))
        throw sessionGone();
    // Reaches the main thread before the error does for callers there, since a thread's events keep their
    // order.
    QMetaObject::invokeMethod(
        &m_events,
        [&events = m_events, guard = m_guard, epoch] {
            if (guard->current() == epoch)
                events.setExpiredAt(QDateTime::currentDateTimeUtc());
        },
        Qt::QueuedConnection);
    throw sessionRefused();
}

} // namespace clockwell
