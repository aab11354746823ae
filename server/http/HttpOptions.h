#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace spdlog {
class logger;
}

namespace clockwell::server {

/// Where the server listens and how much it lets a client take. Sizes are in bytes.
struct HttpOptions
{
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

    unsigned workerThreads = 4;
    std::size_t workerQueueLimit = 256;  ///< requests that may wait for a worker; more get 503
    std::size_t maxConnections = 1024;   ///< more get 503
    std::size_t bodyLimit = 1024 * 1024; ///< 413 above, also for chunked bodies
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

    /// Requests that one address (IPv6: one /64 network) may make; 429 above, 0 switches it off. All
    /// employees of an office usually come from one address, hence the generous numbers; the health check is
    /// not counted.
    unsigned requestsPerMinute = 6000;
    unsigned requestBurst = 2000;

    std::shared_ptr<spdlog::logger> logger; ///< null: spdlog's default logger
};

} // namespace clockwell::server
