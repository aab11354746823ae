#pragma once

#include "HttpConnection.h"
#include "ServerContext.h"

#include <boost/asio/awaitable.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_set>

namespace clockwell::server {

/// Accepts connections and keeps the list of them. I/O thread only, but for waitUntilIdle() and port().
class Listener
{
public:
    using Acceptor = boost::asio::ip::tcp::acceptor;

    /// Throws std::runtime_error with a text for people.
    static Acceptor bind(boost::asio::io_context &io, const std::string &address, std::uint16_t port);

    /// `context` must outlive the listener and the I/O context.
    Listener(Acceptor acceptor, ServerContext &context);

    std::uint16_t port() const { return m_port; }
    void start();
    void stopSoon(); ///< accepts no more; connections end as they become idle
    void cutOff();   ///< closes all connections

    /// Blocks another thread until, after stopSoon(), the last connection has ended; false when the limit is
    /// over.
    bool waitUntilIdle(std::chrono::milliseconds limit);

private:
    boost::asio::awaitable<void> acceptConnections();
    void tryToAdmit(Stream::Socket socket);
    void admit(Stream::Socket socket);
    void ended(const std::shared_ptr<HttpConnection> &connection, std::exception_ptr error);
    void publishState();

    Acceptor m_acceptor;
    ServerContext &m_context;
    const std::uint16_t m_port;
    std::unordered_set<std::shared_ptr<HttpConnection>> m_connections;
    bool m_stopping = false;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isIdle = false; // guarded by m_mutex
};

} // namespace clockwell::server
