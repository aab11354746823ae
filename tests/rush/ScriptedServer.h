#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <string>
#include <vector>

namespace clockwell::rush::test {

/// A server on the thread of its I/O context that notes what arrives, and where.
class ScriptedServer
{
public:
    enum class Manner { keeps, closesAfterAnswer, closesWithoutAnswer };

    struct Arrival
    {
        std::size_t connection; ///< counted from 0
        std::string from;       ///< the peer's address
        std::string head;       ///< the request without its body
    };

    explicit ScriptedServer(boost::asio::io_context &io, Manner manner = Manner::keeps);

    boost::asio::ip::tcp::endpoint endpoint() const { return m_acceptor.local_endpoint(); }
    const std::vector<Arrival> &arrivals() const { return m_arrivals; }

private:
    boost::asio::awaitable<void> accept();
    boost::asio::awaitable<void> serve(boost::asio::ip::tcp::socket socket, std::size_t number);

    Manner m_manner;
    boost::asio::ip::tcp::acceptor m_acceptor;
    std::vector<Arrival> m_arrivals;
};

} // namespace clockwell::rush::test
