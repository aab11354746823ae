#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace clockwell::server {

/// A response as it came over the wire; status 0 when none came in time or the connection ended before it was
/// whole.
struct RawResponse
{
    int status = 0;
    std::map<std::string, std::string> headers; ///< names in lower case
    std::string body;
};

/// A client that sends exactly the bytes it is told to. Every wait ends after `patience`.
class RawClient
{
public:
    static constexpr std::chrono::milliseconds patience = std::chrono::seconds(20);

    /// `receiveBuffer` in bytes, 0 for the system's default; `from` is the address of loopback to come from.
    /// Throws std::system_error when it cannot connect.
    explicit RawClient(std::uint16_t port, int receiveBuffer = 0, const char *from = "127.0.0.1");
    ~RawClient();
    RawClient(const RawClient &) = delete;
    RawClient &operator=(const RawClient &) = delete;

    /// False when the peer has closed.
    bool send(std::string_view bytes);
    /// The next response; `toHead` when it answers a HEAD and has no body whatever its Content-Length says.
    RawResponse receive(bool toHead = false);
    /// send() and receive().
    RawResponse exchange(std::string_view bytes);
    /// Everything up to the end of the stream or `limit`.
    std::string receiveAll(std::chrono::milliseconds limit = patience);
    /// True when the peer ends the stream (or resets it) within `limit` without sending anything more.
    bool closesWithin(std::chrono::milliseconds limit);

    void endOutput(); ///< half-closes: the peer sees the end of the stream
    void reset();     ///< closes with a TCP reset
    int descriptor() const { return m_socket; }

private:
    enum class Wait { Data, End, Timeout };
    Wait readMore(std::chrono::steady_clock::time_point end);

    int m_socket = -1;
    std::string m_received;
};

std::string get(std::string_view target, std::string_view furtherHeaders = {});
std::string post(std::string_view target, std::string_view body, std::string_view furtherHeaders = {});

} // namespace clockwell::server
