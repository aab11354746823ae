#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <stdexcept>

namespace clockwell::server::test {

/// A free port of 127.0.0.1. As long as this lives, nobody listens on it but a program that is told to: the
/// system gives the port to nobody else, for it is bound here.
class ReservedPort
{
public:
    ReservedPort() : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        const bool known = ::bind(m_socket, reinterpret_cast<const sockaddr *>(&address), size) == 0 &&
                           ::getsockname(m_socket, reinterpret_cast<sockaddr *>(&address), &size) == 0;
        // With that on both sides, servers may bind it as well, and listen.
        const int yes = 1;
        if (!known || ::setsockopt(m_socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes) != 0)
            throw std::runtime_error{"no free port"};
        m_port = ntohs(address.sin_port);
    }
    ~ReservedPort() { ::close(m_socket); }
    ReservedPort(const ReservedPort &) = delete;
    ReservedPort &operator=(const ReservedPort &) = delete;

    std::uint16_t number() const { return m_port; }

private:
    int m_socket;
    std::uint16_t m_port = 0;
};

} // namespace clockwell::server::test
