#include "RawClient.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <system_error>
#include <utility>

namespace clockwell::server {

namespace {

int millisecondsUntil(std::chrono::steady_clock::time_point end)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    return static_cast<int>(std::max<long>(0, left.count()));
}

RawResponse parseHead(std::string_view head)
{
    RawResponse response;
    response.status = std::stoi(std::string(head.substr(9, 3)));
    head.remove_prefix(head.find("\r\n") + 2);
    while (!head.empty()) {
        const std::string_view line = head.substr(0, head.find("\r\n"));
        std::string name(line.substr(0, line.find(": ")));
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        response.headers[name] = std::string(line.substr(line.find(": ") + 2));
        head.remove_prefix(std::min(head.size(), line.size() + 2));
    }
    return response;
}

} // namespace

RawClient::RawClient(std::uint16_t port, int receiveBuffer, const char *from)
    : m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    if (receiveBuffer > 0)
        setsockopt(m_socket, SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer);
    const timeval limit{patience.count() / 1000, 0};
    setsockopt(m_socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = inet_addr(from);
    bind(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof address);
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
        const int error = errno;
        close(m_socket);
        throw std::system_error(error, std::generic_category(), "connect");
    }
}

RawClient::~RawClient()
{
    if (m_socket >= 0)
        close(m_socket);
}

bool RawClient::send(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t sent = ::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

RawClient::Wait RawClient::readMore(std::chrono::steady_clock::time_point end)
{
    pollfd entry{m_socket, POLLIN, 0};
    if (poll(&entry, 1, millisecondsUntil(end)) <= 0)
        return Wait::Timeout;
    std::array<char, 16384> chunk{};
    const ssize_t count = recv(m_socket, chunk.data(), chunk.size(), 0);
    if (count <= 0)
        return Wait::End;
    m_received.append(chunk.data(), static_cast<std::size_t>(count));
    return Wait::Data;
}

RawResponse RawClient::receive(bool toHead)
{
    const auto end = std::chrono::steady_clock::now() + patience;
    std::size_t headEnd = m_received.find("\r\n\r\n");
    while (headEnd == std::string::npos) {
        if (readMore(end) != Wait::Data)
            return {};
        headEnd = m_received.find("\r\n\r\n");
    }
    RawResponse response = parseHead(std::string_view(m_received).substr(0, headEnd + 2));
    m_received.erase(0, headEnd + 4);
    const auto length = response.headers.find("content-length");
    const std::size_t size = toHead || length == response.headers.end() ? 0 : std::stoul(length->second);
    while (m_received.size() < size)
        if (readMore(end) != Wait::Data)
            return {};
    response.body = m_received.substr(0, size);
    m_received.erase(0, size);
    return response;
}

RawResponse RawClient::exchange(std::string_view bytes)
{
    send(bytes);
    return receive();
}

std::string RawClient::receiveAll(std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (readMore(end) == Wait::Data) {
    }
    return std::exchange(m_received, {});
}

bool RawClient::closesWithin(std::chrono::milliseconds limit)
{
    return m_received.empty() && readMore(std::chrono::steady_clock::now() + limit) == Wait::End;
}

void RawClient::endOutput()
{
    shutdown(m_socket, SHUT_WR);
}

void RawClient::reset()
{
    const linger now{1, 0};
    setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &now, sizeof now);
    close(m_socket);
    m_socket = -1;
}

std::string get(std::string_view target, std::string_view furtherHeaders)
{
    return "GET " + std::string(target) + " HTTP/1.1\r\nHost: localhost\r\n" + std::string(furtherHeaders) +
           "\r\n";
}

std::string post(std::string_view target, std::string_view body, std::string_view furtherHeaders)
{
    return "POST " + std::string(target) +
           " HTTP/1.1\r\nHost: localhost\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" +
           std::string(furtherHeaders) + "\r\n" + std::string(body);
}

} // namespace clockwell::server
