#pragma once

#include <cstdint>
#include <string>

namespace clockwell::server::bench {

/// One keep-alive connection to the server on loopback. Throws std::runtime_error when it breaks.
class KeptClient
{
public:
    explicit KeptClient(std::uint16_t port);
    KeptClient(const KeptClient &) = delete;
    KeptClient &operator=(const KeptClient &) = delete;
    ~KeptClient();

    /// Sends one punch and waits for its answer: whether it was recorded as a check-in.
    bool checkIn(const std::string &token, const std::string &device);

    /// Asks for the day and waits for the answer: its body, empty unless the status is 200.
    std::string today(const std::string &token);

private:
    std::string ask(const std::string &request);
    std::string readReply();

    int m_socket = -1;
    std::string m_read; // bytes of the next reply
};

} // namespace clockwell::server::bench
