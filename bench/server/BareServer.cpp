#include "BareServer.h"

#include <boost/asio/as_tuple.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/http/write.hpp>

#include <thread>

namespace clockwell::server::bench {

namespace asio = boost::asio;
namespace http = boost::beast::http;
using asio::ip::tcp;

namespace {
const auto withoutThrowing = asio::as_tuple(asio::use_awaitable);
}

class BareServer::Impl
{
public:
    explicit Impl(std::string body) : m_body(std::move(body))
    {
        asio::co_spawn(m_io, accept(), asio::detached);
        m_thread = std::thread([this] { m_io.run(); });
    }

    ~Impl()
    {
        m_io.stop();
        m_thread.join();
    }

    std::uint16_t port() const { return m_acceptor.local_endpoint().port(); }

private:
    asio::awaitable<void> accept()
    {
        while (true) {
            auto [error, socket] = co_await m_acceptor.async_accept(withoutThrowing);
            if (error)
                co_return;
            asio::co_spawn(m_io, serve(std::move(socket)), asio::detached);
        }
    }

    asio::awaitable<void> serve(tcp::socket socket)
    {
        socket.set_option(tcp::no_delay(true));
        boost::beast::flat_buffer buffer;
        while (true) {
            http::request<http::string_body> request;
            const auto [readError, read] =
                co_await http::async_read(socket, buffer, request, withoutThrowing);
            if (readError)
                co_return;
            http::response<http::string_body> response{http::status::ok, request.version()};
            response.set(http::field::content_type, "application/json");
            response.body() = m_body;
            response.prepare_payload();
            const auto [writeError, written] = co_await http::async_write(socket, response, withoutThrowing);
            if (writeError)
                co_return;
        }
    }

    const std::string m_body;
    asio::io_context m_io{1};
    tcp::acceptor m_acceptor{m_io, {asio::ip::address_v4::loopback(), 0}};
    std::thread m_thread;
};

BareServer::BareServer(std::string body) : m_impl(std::make_unique<Impl>(std::move(body))) {}

BareServer::~BareServer() = default;

std::uint16_t BareServer::port() const
{
    return m_impl->port();
}

} // namespace clockwell::server::bench
