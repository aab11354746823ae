#pragma once

#include "Answer.h"

#include <boost/asio/awaitable.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>

#include <chrono>

namespace clockwell::rush {

using Clock = std::chrono::steady_clock;
using HttpRequest = boost::beast::http::request<boost::beast::http::string_body>;

/// One connection of a phone. An exchange on it fails as in the app: after 25 seconds without a byte in
/// either direction, and when `end` has come.
class Connection
{
public:
    explicit Connection(const boost::asio::any_io_executor &executor) : m_stream(executor) {}

    /// From this local address; a failure is `unreachable` or `timedOut`.
    boost::asio::awaitable<Failure> open(boost::asio::ip::tcp::endpoint server,
                                         boost::asio::ip::address_v4 from, Clock::time_point end);

    /// The request has to live until the answer is there.
    boost::asio::awaitable<Answer> exchange(const HttpRequest &request, Clock::time_point end);

    /// Whether the server has neither closed it nor sent anything unasked.
    bool isUsable();

private:
    void expectProgress(Clock::time_point end);

    boost::beast::tcp_stream m_stream;
    boost::beast::flat_buffer m_buffer;
};

/// Binds a socket that is not connected yet to an address, and lets the system choose the port as late as at
/// the connect: so one address has all ports for each server.
void bindAddress(boost::asio::ip::tcp::socket::native_handle_type socket,
                 boost::asio::ip::address_v4 address);

} // namespace clockwell::rush
