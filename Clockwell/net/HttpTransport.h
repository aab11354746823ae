#pragma once

#include "net/HttpExchange.h"
#include "net/Reachability.h"

#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QSet>

#include <functional>

namespace clockwell {

/// Sends requests one by one over Qt's network stack, on the thread that made it. Throws TransportError.
class HttpTransport final : public QObject
{
public:
    /// What a request needs is made with the first one: a client that only reads tokens loads none of it.
    HttpTransport(std::function<std::unique_ptr<Reachability>()> makeReachability, HttpLimits limits);
    ~HttpTransport() override;

    /// A GET without `body`, or a POST. Redirects are not followed: they come back as the 3xx replies they
    /// are, so neither a POST nor a bearer token ever goes where it was not sent. Sends nothing while the
    /// device is offline.
    QCoro::Task<HttpReply> get(QNetworkRequest request);
    QCoro::Task<HttpReply> post(QNetworkRequest request, QByteArray body);

    /// Ends everything in flight with a TransportError (cancelled) and refuses whatever comes later.
    void close();

private:
    void open();
    QCoro::Task<> online();
    QCoro::Task<HttpReply> exchange(std::unique_ptr<HttpExchange> running);
    void releaseWaiting();

    const std::function<std::unique_ptr<Reachability>()> m_makeReachability;
    const HttpLimits m_limits;
    std::unique_ptr<Reachability> m_reachability; // with m_manager: null until open()
    std::unique_ptr<QNetworkAccessManager> m_manager;
    QSet<HttpExchange *> m_running;
    QList<std::shared_ptr<ReplySlot>> m_waiting; // for the device to be online
    bool m_closed = false;
};

} // namespace clockwell
