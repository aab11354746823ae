#include "Listener.h"

#include "PeerAddress.h"

#include <boost/asio/as_tuple.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <stdexcept>

namespace clockwell::server {

namespace asio = boost::asio;
using asio::ip::tcp;

namespace {

constexpr std::chrono::milliseconds acceptRetryDelay(100); // when the system is out of descriptors or memory

} // namespace

Listener::Acceptor Listener::bind(asio::io_context &io, const std::string &address, std::uint16_t port)
{
    boost::system::error_code error;
    const auto ip = asio::ip::make_address(address, error);
    if (error)
        throw std::runtime_error("Not an IP address to listen on: " + address);
    const tcp::endpoint endpoint(ip, port);
    Acceptor acceptor(io);
    acceptor.open(endpoint.protocol(), error);
    if (!error)
        acceptor.set_option(asio::socket_base::reuse_address(true), error);
    if (!error)
        acceptor.bind(endpoint, error);
    if (!error)
        acceptor.listen(asio::socket_base::max_listen_connections, error);
    if (error)
        throw std::runtime_error("Cannot listen on " + address + " port " + std::to_string(port) + ": " +
                                 error.message());
    return acceptor;
}

Listener::Listener(Acceptor acceptor, ServerContext &context)
    : m_acceptor(std::move(acceptor)), m_context(context), m_port(m_acceptor.local_endpoint().port())
{}

void Listener::start()
{
    asio::co_spawn(m_acceptor.get_executor(), acceptConnections(), asio::detached);
}

asio::awaitable<void> Listener::acceptConnections()
{
    asio::steady_timer pause(m_acceptor.get_executor());
    while (!m_stopping) {
        auto [error, socket] = co_await m_acceptor.async_accept(asio::as_tuple(asio::use_awaitable));
        if (!error) {
            tryToAdmit(std::move(socket));
        } else if (!m_stopping) {
            m_context.log.trouble("acceptFailed", error.message());
            pause.expires_after(acceptRetryDelay);
            co_await pause.async_wait(asio::as_tuple(asio::use_awaitable));
        }
    }
}

/// Whatever goes wrong with one connection, the next one is accepted.
void Listener::tryToAdmit(Stream::Socket socket)
{
    try {
        admit(std::move(socket));
    } catch (const std::exception &exception) {
        m_context.log.trouble("connectionFailed", exception.what());
    }
}

void Listener::admit(Stream::Socket socket)
{
    const auto address = peerAddress(socket);
    const std::string network =
        m_context.proxies.contain(address) ? Seating::nobodysNetwork : networkOf(address);
    const auto kind = m_stopping ? std::nullopt : m_context.seating.admit(network);
    if (!kind)
        return; // closes it: an app whose request gets no answer keeps its tokens
    const auto connection =
        std::make_shared<HttpConnection>(std::move(socket), address, network, m_context, *kind);
    m_connections.insert(connection);
    asio::co_spawn(m_acceptor.get_executor(), connection->run(),
                   [this, connection](std::exception_ptr error) { ended(connection, error); });
}

void Listener::ended(const std::shared_ptr<HttpConnection> &connection, std::exception_ptr error)
{
    connection->cutOff();
    m_connections.erase(connection);
    publishState();
    try {
        if (error)
            std::rethrow_exception(error);
    } catch (const std::exception &exception) {
        m_context.log.trouble("connectionFailed", exception.what());
    }
}

void Listener::stopSoon()
{
    m_stopping = true;
    boost::system::error_code ignored;
    m_acceptor.close(ignored);
    for (const auto &connection : m_connections)
        connection->stopSoon();
    publishState();
}

void Listener::cutOff()
{
    for (const auto &connection : m_connections)
        connection->cutOff();
}

void Listener::publishState()
{
    const std::lock_guard lock(m_mutex);
    m_isIdle = m_stopping && m_connections.empty();
    m_changed.notify_all();
}

bool Listener::waitUntilIdle(std::chrono::milliseconds limit)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, limit, [this] { return m_isIdle; });
}

} // namespace clockwell::server
