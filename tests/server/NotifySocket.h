#pragma once

#include "TempFolder.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace clockwell::server::test {

/// The socket at which a service manager listens, named to this process and to those that it starts.
class NotifySocket
{
public:
    /// `watchdog`: after how long without a sign of life the service would be ended; zero: no watchdog.
    explicit NotifySocket(std::chrono::microseconds watchdog = {})
        : m_socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0))
    {
        const std::string path = m_folder.file("notify");
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        if (path.size() >= sizeof address.sun_path)
            throw std::runtime_error{"the path is too long for a socket"};
        std::ranges::copy(path, address.sun_path);
        if (::bind(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
            throw std::runtime_error{"no socket"};
        ::setenv("NOTIFY_SOCKET", path.c_str(), 1);
        if (watchdog.count() > 0)
            ::setenv("WATCHDOG_USEC", std::to_string(watchdog.count()).c_str(), 1);
    }
    ~NotifySocket()
    {
        ::unsetenv("NOTIFY_SOCKET");
        ::unsetenv("WATCHDOG_USEC");
        ::close(m_socket);
    }
    NotifySocket(const NotifySocket &) = delete;
    NotifySocket &operator=(const NotifySocket &) = delete;

    /// The next message; empty when none comes in time.
    std::string next(std::chrono::milliseconds limit = std::chrono::seconds{30}) const
    {
        const timeval time{limit.count() / 1000, (limit.count() % 1000) * 1000};
        ::setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &time, sizeof time);
        std::array<char, 4096> bytes{};
        const auto count = ::recv(m_socket, bytes.data(), bytes.size(), 0);
        return count > 0 ? std::string{bytes.data(), static_cast<std::size_t>(count)} : std::string{};
    }

    /// Whether this message comes, behind others perhaps.
    bool hears(const std::string &message) const
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds{30};
        while (std::chrono::steady_clock::now() < end)
            if (next(std::chrono::seconds{1}) == message)
                return true;
        return false;
    }

private:
    TempFolder m_folder;
    int m_socket;
};

} // namespace clockwell::server::test
