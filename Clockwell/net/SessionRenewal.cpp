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

QCoro::Task<> SessionRenewal::renew(SessionGuard::Epoch epoch)
{
    // A renewal of an earlier session is not shared, because it can only fail.
    if (!m_running || m_runningEpoch != epoch) {
        m_runningEpoch = epoch;
        m_running = std::make_shared<QCoro::Task<>>(exchangeTokens(epoch));
    }
    const std::shared_ptr<QCoro::Task<>> running = m_running;
    std::exception_ptr failure;
    try {
        co_await *running;
    } catch (...) {
        failure = std::current_exception();
    }
    // All waiting coroutines resume one after the other before anything else runs on this thread; the first
    // of them resets m_running, so that the next call starts a new renewal.
    if (m_running == running)
        m_running.reset();
    if (failure)
        std::rethrow_exception(failure);
}

QCoro::Task<> SessionRenewal::exchangeTokens(SessionGuard::Epoch epoch)
{
    const std::optional<QString> refreshToken = m_tokens.load(TokenKey::refreshToken);
    if (!refreshToken)
        throw noRefreshError();
    HttpReply reply;
    std::exception_ptr failure;
    try {
        reply = co_await sendRequest(*refreshToken);
    } catch (...) {
        failure = std::current_exception();
    }
    if (m_guard->current() != epoch)
        throw noRefreshError();
    if (failure)
        std::rethrow_exception(failure);
    if (reply.status && *reply.status / 100 == 2)
        store(reply.body, epoch);
    else
        expire(epoch);
}

QCoro::Task<HttpReply> SessionRenewal::sendRequest(QString refreshToken)
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
        throw noRefreshError();
}

void SessionRenewal::expire(SessionGuard::Epoch epoch)
{
    if (!m_guard->write(epoch, [&] { clearTokens(m_tokens); }))
        throw noRefreshError();
    // Callers on the main thread see the expiry before the error, because a thread's events keep their order.
    QMetaObject::invokeMethod(
        &m_events,
        [&events = m_events, guard = m_guard, epoch] {
            if (guard->current() == epoch)
                events.setExpiredAt(QDateTime::currentDateTimeUtc());
        },
        Qt::QueuedConnection);
    throw refreshFailedError();
}

} // namespace clockwell
