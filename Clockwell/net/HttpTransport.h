#pragma once

#include "net/HttpExchange.h"
#include "net/Reachability.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QSet>

#include <functional>

namespace clockwell {

/// Sends requests and receives their replies, on the thread that created it. Throws TransportError.
class HttpTransport final : public QObject
{
public:
    /// Reachability and connections are created with the first request: a client that only reads tokens does
    /// not load them.
    HttpTransport(std::function<std::unique_ptr<Reachability>()> makeReachability, HttpOptions options);
    ~HttpTransport() override;

    /// Redirects are not followed but returned as 3xx replies, so a POST or a bearer token never reaches
    /// another address. Sends nothing while the device is offline.
    QCoro::Task<HttpReply> send(HttpRequest request);

    /// Ends everything in flight with a TransportError (cancelled); later requests fail with the same error.
    void close();

private:
    struct Connections;

    void initReachability();
    QCoro::Task<> waitUntilOnline();
    std::shared_ptr<Connections> connections();
    void networkChanged();
    void releaseWaiting();

    const std::function<std::unique_ptr<Reachability>()> m_makeReachability;
    const HttpOptions m_options;
    std::unique_ptr<Reachability> m_reachability; // null until initReachability()
    std::shared_ptr<Connections> m_connections;   // for the next request; null: it creates them
    QSet<HttpExchange *> m_running;
    QList<std::shared_ptr<ReplySlot>> m_waiting; // requests waiting for the device to be online
    bool m_closed = false;
};

} // namespace clockwell
