#include "HttpClient.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <sstream>

namespace clockwell::server::test {

namespace {

class ClientSocket
{
public:
    ClientSocket(std::uint16_t port, const std::string &from)
        : m_descriptor(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        const timeval limit{60, 0};
        ::setsockopt(m_descriptor, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        ::setsockopt(m_descriptor, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
        const int withoutPort = 1; // the connection gets one: the address alone has too few
        ::setsockopt(m_descriptor, IPPROTO_IP, IP_BIND_ADDRESS_NO_PORT, &withoutPort, sizeof withoutPort);
        sockaddr_in own{};
        own.sin_family = AF_INET;
        own.sin_addr.s_addr = ::inet_addr(from.c_str());
        if (::bind(m_descriptor, reinterpret_cast<const sockaddr *>(&own), sizeof own) != 0)
            return;
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        m_connected =
            ::connect(m_descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    }
    ~ClientSocket() { ::close(m_descriptor); }
    ClientSocket(const ClientSocket &) = delete;
    ClientSocket &operator=(const ClientSocket &) = delete;

    bool write(const std::string &text) const
    {
        std::size_t sent = 0;
        while (m_connected && sent < text.size()) {
            const auto count = ::send(m_descriptor, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
            if (count <= 0)
                return false;
            sent += static_cast<std::size_t>(count);
        }
        return m_connected;
    }

    std::string readToEnd() const
    {
        std::string all;
        std::array<char, 4096> part{};
        for (auto count = ::recv(m_descriptor, part.data(), part.size(), 0); count > 0;
             count = ::recv(m_descriptor, part.data(), part.size(), 0))
            all.append(part.data(), static_cast<std::size_t>(count));
        return all;
    }

private:
    int m_descriptor;
    bool m_connected = false;
};

Reply parseReply(const std::string &text)
{
    Reply reply;
    const auto headEnd = text.find("\r\n\r\n");
    if (headEnd == std::string::npos)
        return reply;
    std::istringstream head{text.substr(0, headEnd)};
    std::string line;
    std::getline(head, line);
    const int status = std::atoi(line.substr(line.find(' ') + 1).c_str());
    while (std::getline(head, line)) {
        const auto colon = line.find(':');
        std::string name = line.substr(0, colon);
        std::ranges::transform(name, name.begin(),
                               [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        const auto first = line.find_first_not_of(' ', colon + 1);
        reply.headers[name] = first == std::string::npos ? "" : line.substr(first, line.find('\r') - first);
    }
    reply.body = text.substr(headEnd + 4);
    const auto length = reply.headers.find("content-length");
    const bool complete =
        length == reply.headers.end() || length->second == std::to_string(reply.body.size());
    reply.status = complete ? status : 0;
    return reply;
}

} // namespace

Reply send(std::uint16_t port, const std::string &method, const std::string &target, const std::string &token,
           const std::string &body, const std::string &contentType, const std::string &from)
{
    std::string text = method + " " + target + " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n";
    if (!token.empty())
        text += "Authorization: Bearer " + token + "\r\n";
    if (!body.empty() || method == "POST")
        text +=
            "Content-Type: " + contentType + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n";
    const ClientSocket socket{port, from};
    return socket.write(text + "\r\n" + body) ? parseReply(socket.readToEnd()) : Reply{};
}

std::string Reply::message() const
{
    const auto message = json().value("message", nlohmann::json{});
    if (message.is_string())
        return message.get<std::string>();
    return message.is_array() && message.size() == 1 ? message.front().get<std::string>() : "";
}

} // namespace clockwell::server::test
