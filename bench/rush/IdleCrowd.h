#pragma once

#include "Client.h"

#include <cstddef>

namespace clockwell::rush {

/// Connections that have asked once, were answered and say nothing more, each from a network address of its
/// own. One that the server closes comes back 5 to 15 seconds later; one that is not let in at all does not.
class IdleCrowd
{
public:
    IdleCrowd(boost::asio::any_io_executor executor, boost::asio::ip::tcp::endpoint server)
        : m_executor(std::move(executor)), m_server(server)
    {}

    /// Opens this many, a thousand a second, the first one from `from`; done when each is in or has failed.
    boost::asio::awaitable<void> gather(unsigned count, boost::asio::ip::address_v4 from);

    std::size_t open() const { return m_open; }
    std::size_t closed() const { return m_closed; } ///< by the server, after they were let in

private:
    boost::asio::awaitable<void> hold(boost::asio::ip::address_v4 from);
    boost::asio::awaitable<bool> ask(boost::asio::ip::tcp::socket &socket, boost::asio::ip::address_v4 from);

    boost::asio::any_io_executor m_executor;
    boost::asio::ip::tcp::endpoint m_server;
    std::size_t m_settled = 0; // that are in, or failed
    std::size_t m_open = 0;
    std::size_t m_closed = 0;
};

} // namespace clockwell::rush
