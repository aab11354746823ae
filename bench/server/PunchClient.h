#pragma once

#include <cstdint>
#include <string>

namespace clockwell::server::bench {

/// One keep-alive connection to the server on loopback. Throws std::runtime_error when it breaks.
class PunchClient
{
public:
    explicit PunchClient(std::uint16_t port);
    PunchClient(const PunchClient &) = delete;
    PunchClient &operator=(const PunchClient &) = delete;
    ~PunchClient();

    /// Sends one punch and waits for its answer: whether it was recorded as a check-in.
    bool checkIn(const std::string &token, const std::string &device);

private:
    std::string readReply();

    int m_socket = -1;
    std::string m_read; // bytes of the next reply
};

} // namespace clockwell::server::bench
