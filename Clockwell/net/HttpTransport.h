#pragma once

#include "net/HttpExchange.h"
#include "net/Reachability.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QSet>

#include <functional>

namespace clockwell {

/// Sends requests one by one, on the thread that made it. Throws TransportError.
class HttpTransport final : public QObject
{
public:
    /// What a request needs is made with the first one: a client that only reads tokens loads none of it.
    HttpTransport(std::function<std::unique_ptr<Reachability>()> makeReachability, HttpOptions options);
    ~HttpTransport() override;

    /// Redirects are not followed: they come back as the 3xx replies they are, so neither a POST nor a bearer
    /// token ever goes where it was not sent. Sends nothing while the device is offline.
    QCoro::Task<HttpReply> send(HttpRequest request);

    /// Ends everything in flight with a TransportError (cancelled) and refuses whatever comes later.
    void close();

private:
    struct Connections;

    void open();
    QCoro::Task<> online();
    std::shared_ptr<Connections> connections();
    void networkChanged();
    void releaseWaiting();

    const std::function<std::unique_ptr<Reachability>()> m_makeReachability;
    const HttpOptions m_options;
    std::unique_ptr<Reachability> m_reachability; // null until open()
    std::shared_ptr<Connections> m_connections;   // for the next request; null: to be made for it
    QSet<HttpExchange *> m_running;
    QList<std::shared_ptr<ReplySlot>> m_waiting; // for the device to be online
    bool m_closed = false;
};

} // namespace clockwell
