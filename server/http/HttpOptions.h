#pragma once

#include "server/http/AnsweredRequest.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace spdlog {
class logger;
}

namespace clockwell::server {

/// Where the server listens and how much it lets a client take. Sizes are in bytes.
struct HttpOptions
{
    static constexpr std::chrono::milliseconds defaultPasswordWait = std::chrono::seconds(20);
    static constexpr std::chrono::milliseconds defaultHeadDeadline = std::chrono::seconds(10);
    static constexpr std::chrono::milliseconds defaultRequestDeadline = std::chrono::seconds(30);
    static constexpr std::chrono::milliseconds defaultWriteDeadline = std::chrono::seconds(30);
    static constexpr std::chrono::milliseconds defaultIdleDeadline = std::chrono::seconds(60);
    static constexpr std::chrono::milliseconds defaultLingerDeadline = std::chrono::seconds(2);
    static constexpr std::chrono::milliseconds defaultStopDeadline = std::chrono::seconds(10);

    std::string address = "127.0.0.1"; ///< IPv4 or IPv6 address, no host name
    std::uint16_t port = 0;            ///< 0 lets the system choose, see HttpServer::port()
    std::string certificateFile;       ///< PEM chain; with privateKeyFile it turns TLS (1.2 and later) on
    std::string privateKeyFile;        ///< PEM

    /// Networks as TrustedProxies takes them. A connection from there is not counted by its own address, and
    /// its requests count for whom its X-Forwarded-For names; from anywhere else that header is ignored.
    std::vector<std::string> trustedProxies;

    unsigned renewalThreads = 2;  ///< of the lane of renewals
    unsigned signedInThreads = 4; ///< of the lane of those who are signed in
    unsigned passwordThreads = 2; ///< of the lane of passwords, at low priority
    /// A request of the lane of passwords that would have to wait for longer is refused with 503: the app
    /// gives up on an answer after 25 seconds.
    std::chrono::milliseconds passwordWait = defaultPasswordWait;
    std::size_t passwordsPerNetwork = 1000; ///< that may wait in that lane from one address; 503 beyond
    /// That may wait in that lane for one account; beyond that one from each address, and 503 for the rest.
    std::size_t passwordsPerAccount = 32;

    /// A newcomer beyond these takes the place of the connection that has waited longest for its client, of
    /// all or of its own address (IPv6: /64 network). If none waits, it gets 503, unless it renews a session.
    std::size_t maxConnections = 20'000;
    std::size_t connectionsPerNetwork = 10'000;
    std::size_t guestConnections = 256; ///< beyond the limits, to tell the two apart; more are just closed

    std::size_t bodyLimit = 16 * 1024;   ///< 413 above, also for chunked bodies
    std::size_t headerLimit = 16 * 1024; ///< request line and header fields together, 431 above

    /// For the TLS handshake, from there to the first byte of the first request, and from the first byte of
    /// any request to the end of its header.
    std::chrono::milliseconds headDeadline = defaultHeadDeadline;
    /// From the first byte of a request to the last one of its body, however steadily it drips.
    std::chrono::milliseconds requestDeadline = defaultRequestDeadline;
    std::chrono::milliseconds writeDeadline = defaultWriteDeadline; ///< for one whole response
    std::chrono::milliseconds idleDeadline = defaultIdleDeadline;   ///< between two requests of a connection
    std::chrono::milliseconds lingerDeadline =
        defaultLingerDeadline;                                    ///< for a peer to read the last response
    std::chrono::milliseconds stopDeadline = defaultStopDeadline; ///< for requests in flight at stop()

    /// Requests of one address (IPv6: /64 network) that may fail with a 4xx; 429 for more, 0 switches it off.
    /// Counted and refused is only what carries no token and is neither a renewal nor about a password: who
    /// is signed in has limits by account, whatever others at the same address do.
    unsigned failuresPerMinute = 6000;
    unsigned failureBurst = 20'000;

    std::shared_ptr<spdlog::logger> logger; ///< null: spdlog's default logger
    /// Which paths may stand in the log; null: only "/health". See AccessLog.
    std::function<bool(const std::string &path)> isOwnPath;
    OnAnswered onAnswered; ///< may be null
};

} // namespace clockwell::server
