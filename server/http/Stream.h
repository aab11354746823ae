#pragma once

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/stream.hpp>

#include <optional>
#include <utility>

namespace clockwell::server {

/// A connection's byte stream, with or without TLS: one type, so that what reads and writes is compiled once.
class Stream
{
public:
    using Socket = boost::asio::ip::tcp::socket;
    using executor_type = Socket::executor_type;

    /// `tls` may be null; else it must outlive the stream.
    Stream(Socket socket, boost::asio::ssl::context *tls) : m_socket(std::move(socket))
    {
        if (tls)
            m_tls.emplace(m_socket, *tls);
    }

    executor_type get_executor() { return m_socket.get_executor(); }
    bool hasTls() const { return m_tls.has_value(); }
    Socket &socket() { return m_socket; }
    boost::asio::ssl::stream<Socket &> &tls() { return *m_tls; }

    template <typename Buffers, typename Token>
    auto async_read_some(const Buffers &buffers, Token &&token)
    {
        if (m_tls)
            return m_tls->async_read_some(buffers, std::forward<Token>(token));
        return m_socket.async_read_some(buffers, std::forward<Token>(token));
    }

    template <typename Buffers, typename Token>
    auto async_write_some(const Buffers &buffers, Token &&token)
    {
        if (m_tls)
            return m_tls->async_write_some(buffers, std::forward<Token>(token));
        return m_socket.async_write_some(buffers, std::forward<Token>(token));
    }

private:
    Socket m_socket;
    std::optional<boost::asio::ssl::stream<Socket &>> m_tls;
};

} // namespace clockwell::server
