#include "net/HttpTransport.h"

namespace clockwell {

/// The connections opened since the last failure or change of the network.
///
/// A connection can break without notice, and a broken HTTP/2 connection makes every later request on it
/// fail. So after a failure or a change of the network the next request opens new connections; the old ones
/// are closed when the last request that uses them has ended.
struct HttpTransport::Connections
{
    CurlMulti shared{6};
    CurlMulti single{0}; // one connection per request, never reused
};

HttpTransport::HttpTransport(std::function<std::unique_ptr<Reachability>()> makeReachability,
                             HttpOptions options)
    : m_makeReachability(std::move(makeReachability)), m_options(std::move(options))
{}

HttpTransport::~HttpTransport() = default;

QCoro::Task<HttpReply> HttpTransport::send(HttpRequest request)
{
    co_await waitUntilOnline();
    const std::shared_ptr<Connections> used = connections();
    CurlMulti &multi = request.body ? used->single : used->shared;
    HttpExchange running(std::shared_ptr<CurlMulti>(used, &multi), std::move(request), m_options);
    m_running.insert(&running);
    std::exception_ptr failure;
    try {
        co_await running.finished();
    } catch (...) {
        failure = std::current_exception();
    }
    m_running.remove(&running);
    if (!failure)
        co_return running.takeReply();
    if (m_connections == used)
        m_connections.reset();
    std::rethrow_exception(failure);
}

std::shared_ptr<HttpTransport::Connections> HttpTransport::connections()
{
    if (!m_connections)
        m_connections = std::make_shared<Connections>();
    return m_connections;
}

void HttpTransport::initReachability()
{
    if (m_reachability)
        return;
    m_reachability = m_makeReachability();
    connect(m_reachability.get(), &Reachability::changed, this, &HttpTransport::networkChanged);
}

QCoro::Task<> HttpTransport::waitUntilOnline()
{
    initReachability();
    if (!m_closed && m_reachability->isOffline()) {
        const std::shared_ptr<ReplySlot> slot = ReplySlot::make();
        m_waiting.append(slot);
        QTimer limit;
        limit.setSingleShot(true);
        limit.setTimerType(Qt::PreciseTimer); // the default type may fire 5 % early
        connect(&limit, &QTimer::timeout, this, [this, slot] {
            m_waiting.removeOne(slot);
            slot->finish(std::make_exception_ptr(TransportError(TransportError::Kind::Offline)));
        });
        limit.start(m_options.totalLimit);
        co_await slot->finished();
    }
    if (m_closed)
        throw TransportError(TransportError::Kind::Cancelled);
}

void HttpTransport::networkChanged()
{
    m_connections.reset();
    releaseWaiting();
}

void HttpTransport::releaseWaiting()
{
    if (!m_closed && m_reachability->isOffline())
        return;
    for (const auto &slot : std::exchange(m_waiting, {}))
        slot->finish();
}

void HttpTransport::close()
{
    m_closed = true;
    releaseWaiting();
    const QSet<HttpExchange *> running = m_running;
    for (HttpExchange *exchange : running)
        exchange->cancel();
}

} // namespace clockwell
