#include "net/HttpTransport.h"

#include "net/OneShotBody.h"

#include <QHostAddress>
#include <QNetworkProxy>

namespace clockwell {

namespace {

bool isLoopback(const QUrl &url)
{
    return url.host() == QLatin1StringView("localhost") || QHostAddress(url.host()).isLoopback();
}

void prepare(QNetworkRequest &request)
{
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    // Our own limit on the size after decompression is stricter than Qt's on the ratio.
    request.setDecompressedSafetyCheckThreshold(-1);
}

/// A system proxy is of no use to reach this machine, and could not.
void chooseProxy(QNetworkAccessManager &manager, const QUrl &url)
{
    if (isLoopback(url))
        manager.setProxy(QNetworkProxy(QNetworkProxy::NoProxy));
}

} // namespace

HttpTransport::HttpTransport(std::function<std::unique_ptr<Reachability>()> makeReachability,
                             HttpLimits limits)
    : m_makeReachability(std::move(makeReachability)), m_limits(limits)
{}

HttpTransport::~HttpTransport() = default;

QCoro::Task<HttpReply> HttpTransport::get(QNetworkRequest request)
{
    co_await online();
    prepare(request);
    chooseProxy(*m_manager, request.url());
    co_return co_await exchange(std::make_unique<HttpExchange>(nullptr, m_manager->get(request), m_limits));
}

QCoro::Task<HttpReply> HttpTransport::post(QNetworkRequest request, QByteArray body)
{
    co_await online();
    prepare(request);
    // A connection kept alive may have died unnoticed, and what is sent on it is lost; Qt then sends a GET
    // again, but a POST must not be. In a manager of its own nothing is kept alive.
    auto manager = std::make_unique<QNetworkAccessManager>();
    chooseProxy(*manager, request.url());
    auto upload = std::make_unique<OneShotBody>(body);
    request.setHeader(QNetworkRequest::ContentLengthHeader, body.size());
    request.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
    QNetworkReply *reply = manager->sendCustomRequest(request, "POST", upload.get());
    upload.release()->setParent(reply);
    co_return co_await exchange(std::make_unique<HttpExchange>(std::move(manager), reply, m_limits));
}

QCoro::Task<HttpReply> HttpTransport::exchange(std::unique_ptr<HttpExchange> running)
{
    m_running.insert(running.get());
    std::exception_ptr failure;
    try {
        co_await running->finished();
    } catch (...) {
        failure = std::current_exception();
    }
    m_running.remove(running.get());
    if (failure)
        std::rethrow_exception(failure);
    co_return running->takeReply();
}

void HttpTransport::open()
{
    if (m_manager)
        return;
    m_manager = std::make_unique<QNetworkAccessManager>();
    m_reachability = m_makeReachability();
    connect(m_reachability.get(), &Reachability::changed, this, &HttpTransport::releaseWaiting);
}

QCoro::Task<> HttpTransport::online()
{
    open();
    if (!m_closed && m_reachability->isOffline()) {
        const std::shared_ptr<ReplySlot> slot = ReplySlot::make();
        m_waiting.append(slot);
        QTimer limit;
        limit.setSingleShot(true);
        connect(&limit, &QTimer::timeout, this, [this, slot] {
            m_waiting.removeOne(slot);
            slot->finish(std::make_exception_ptr(TransportError(TransportError::Kind::Offline)));
        });
        limit.start(m_limits.total);
        co_await slot->finished();
    }
    if (m_closed)
        throw TransportError(TransportError::Kind::Cancelled);
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
