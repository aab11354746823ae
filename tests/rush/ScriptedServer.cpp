#include "ScriptedServer.h"

#include "Awaiting.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/write.hpp>

namespace clockwell::rush::test {

namespace asio = boost::asio;
using asio::ip::tcp;

ScriptedServer::ScriptedServer(asio::io_context &io, Manner manner)
    : m_manner(manner), m_acceptor(io, tcp::endpoint{asio::ip::address_v4::loopback(), 0})
{
    asio::co_spawn(io, accept(), asio::detached);
}

asio::awaitable<void> ScriptedServer::accept()
{
    for (std::size_t number = 0;; ++number) {
        auto [error, socket] = co_await m_acceptor.async_accept(withoutThrowing);
        if (error)
            co_return;
        asio::co_spawn(m_acceptor.get_executor(), serve(std::move(socket), number), asio::detached);
    }
}

asio::awaitable<void> ScriptedServer::serve(tcp::socket socket, std::size_t number)
{
    const std::string answer = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}";
    const std::string from = socket.remote_endpoint().address().to_string();
    std::string buffer;
    while (true) {
        const auto [error, length] = co_await asio::async_read_until(socket, asio::dynamic_buffer(buffer),
                                                                     "\r\n\r\n", withoutThrowing);
        if (error)
            co_return;
        m_arrivals.push_back({number, from, buffer.substr(0, length)});
        buffer.clear(); // a body comes with its head
        if (m_manner == Manner::closesWithoutAnswer)
            co_return;
        const auto [writeError, count] =
            co_await asio::async_write(socket, asio::buffer(answer), withoutThrowing);
        if (writeError || m_manner == Manner::closesAfterAnswer)
            co_return;
    }
}

} // namespace clockwell::rush::test
