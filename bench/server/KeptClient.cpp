#include "KeptClient.h"

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <stdexcept>
#include <string_view>

namespace clockwell::server::bench {

namespace {

/// A balancer may have written the names of the header's fields in small letters.
std::size_t bodyLength(std::string head)
{
    constexpr std::string_view name = "\r\ncontent-length: ";
    std::ranges::transform(head, head.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const auto place = head.find(name);
    if (place == std::string::npos)
        throw std::runtime_error{"a reply without a length"};
    return std::stoul(head.substr(place + name.size()));
}

} // namespace

KeptClient::KeptClient(std::uint16_t port) : m_socket(socket(AF_INET, SOCK_STREAM, 0))
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int on = 1;
    const timeval limit{30, 0};
    setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    if (connect(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
        throw std::runtime_error{"cannot connect to the server"};
}

KeptClient::~KeptClient()
{
    close(m_socket);
}

bool KeptClient::checkIn(const std::string &token, const std::string &device)
{
    const std::string body =
        R"({"lat":54.1234,"lng":9.5678,"accuracy":8,"deviceId":")" + device + R"(","isMockLocation":false})";
    const std::string request =
        "POST /api/attendance/punch HTTP/1.1\r\nHost: localhost\r\nAuthorization: Bearer " + token +
        "\r\nContent-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" +
        body;
    const std::string reply = ask(request);
    return reply.starts_with("HTTP/1.1 20") && reply.find(R"("type":"IN")") != std::string::npos;
}

std::string KeptClient::today(const std::string &token)
{
    const std::string reply =
        ask("GET /api/attendance/today HTTP/1.1\r\nHost: localhost\r\nAuthorization: Bearer " + token +
            "\r\n\r\n");
    return reply.starts_with("HTTP/1.1 200") ? reply.substr(reply.find("\r\n\r\n") + 4) : std::string{};
}

std::string KeptClient::ask(const std::string &request)
{
    if (send(m_socket, request.data(), request.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(request.size()))
        throw std::runtime_error{"the request was not taken whole"};
    return readReply();
}

std::string KeptClient::readReply()
{
    std::size_t whole = 0;
    for (;;) {
        const auto head = m_read.find("\r\n\r\n");
        if (whole == 0 && head != std::string::npos)
            whole = head + 4 + bodyLength(m_read.substr(0, head));
        if (whole != 0 && m_read.size() >= whole) {
            std::string reply = m_read.substr(0, whole);
            m_read.erase(0, whole);
            return reply;
        }
        std::array<char, 8192> piece{};
        const auto count = recv(m_socket, piece.data(), piece.size(), 0);
        if (count <= 0)
            throw std::runtime_error{"the connection broke"};
        m_read.append(piece.data(), static_cast<std::size_t>(count));
    }
}

} // namespace clockwell::server::bench
