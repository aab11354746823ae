#include "Connection.h"

#include "Awaiting.h"

#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/write.hpp>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>
#include <system_error>

namespace clockwell::rush {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;

namespace {

constexpr std::chrono::seconds idleLimit{25};
constexpr std::uint64_t replyLimit = 16 * 1024 * 1024;

Failure failureOf(boost::system::error_code error)
{
    return error == beast::error::timeout ? Failure::timedOut : Failure::closed;
}

} // namespace

void bindAddress(int socket, asio::ip::address_v4 address)
{
    const int on = 1;
    ::setsockopt(socket, IPPROTO_IP, IP_BIND_ADDRESS_NO_PORT, &on, sizeof on);
    sockaddr_in local{};
    local.sin_family = AF_INET;
    local.sin_addr.s_addr = htonl(address.to_uint());
    if (::bind(socket, reinterpret_cast<const sockaddr *>(&local), sizeof local) != 0)
        throw std::system_error{errno, std::generic_category(),
                                "cannot use the address " + address.to_string()};
}

void Connection::expectProgress(Clock::time_point end)
{
    m_stream.expires_at(std::min(end, Clock::now() + idleLimit));
}

asio::awaitable<Failure> Connection::open(asio::ip::tcp::endpoint server, asio::ip::address_v4 from,
                                          Clock::time_point end)
{
    auto &socket = m_stream.socket();
    socket.open(asio::ip::tcp::v4());
    bindAddress(socket.native_handle(), from);
    expectProgress(end);
    const auto [error] = co_await m_stream.async_connect(server, withoutThrowing);
    if (!error)
        socket.set_option(asio::ip::tcp::no_delay(true));
    if (!error)
        co_return Failure::none;
    co_return error == beast::error::timeout ? Failure::timedOut : Failure::unreachable;
}

asio::awaitable<Answer> Connection::exchange(const HttpRequest &request, Clock::time_point end)
{
    Answer answer;
    expectProgress(end);
    const auto [writeError, sent] = co_await http::async_write(m_stream, request, withoutThrowing);
    if (writeError) {
        answer.failure = failureOf(writeError);
        co_return answer;
    }
    http::response_parser<http::string_body> parser;
    parser.body_limit(replyLimit);
    while (!parser.is_done()) {
        expectProgress(end);
        const auto [error, count] =
            co_await http::async_read_some(m_stream, m_buffer, parser, withoutThrowing);
        answer.begun = parser.got_some();
        if (error) {
            answer.failure = failureOf(error);
            co_return answer;
        }
    }
    answer.status = parser.get().result_int();
    answer.keepAlive = parser.get().keep_alive();
    answer.body = std::move(parser.get().body());
    co_return answer;
}

bool Connection::isUsable()
{
    char byte = 0;
    const auto count = ::recv(m_stream.socket().native_handle(), &byte, sizeof byte, MSG_PEEK | MSG_DONTWAIT);
    return count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
}

} // namespace clockwell::rush
