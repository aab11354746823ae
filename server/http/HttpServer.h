#pragma once

#include "HttpOptions.h"
#include "Message.h"

#include <cstdint>
#include <memory>

namespace clockwell::server {

/// An HTTP/1.1 server: one I/O thread that never blocks, and lanes of workers that run the handler. It
/// answers "GET /health", OPTIONS and every malformed or excessive request by itself; a HEAD reaches the
/// handler as a GET. Start and stop it from one thread of the owner, which must not be a worker.
class HttpServer
{
public:
    using Options = HttpOptions;

    HttpServer(Options options, Handler handler, Triage triage = {});
    ~HttpServer(); ///< stops
    HttpServer(const HttpServer &) = delete;
    HttpServer &operator=(const HttpServer &) = delete;

    /// Binds and begins to serve. Throws std::runtime_error with a text for people when the address is not
    /// free or not an address, or when the certificate or key cannot be used. A server is started once.
    void start();

    /// The port that is listened on, also when 0 was asked for. 0 before start().
    std::uint16_t port() const;

    /// Reads certificate and key again for the handshakes to come; goes on with those it has when they cannot
    /// be used. The log says which. On the owner's thread.
    void reloadCertificate();

    /// The first step of an end that nobody notices: isStopping() is true from now on, and each answer ends
    /// its connection, but connections and requests are accepted as before, until stop(). On the owner's
    /// thread.
    void drain();

    /// True from the beginning of drain() or stop() on. Any thread.
    bool isStopping() const;

    /// Calls `answered`, which throws nothing, on a worker thread once the I/O thread and a worker of those
    /// who are signed in have turned to it. Between start() and the end of stop(); any thread.
    void probe(std::function<void()> answered);

    struct QueueLoad
    {
        std::size_t waiting = 0;
        std::size_t running = 0;
    };
    /// Requests of the lane of passwords. From start() on; any thread.
    QueueLoad passwordQueue() const;

    /// Accepts no more, closes idle connections, gives requests in flight up to `stopDeadline`, closes the
    /// rest. Then it waits for handlers that still run: a handler must end by itself. Further calls do
    /// nothing.
    void stop();

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace clockwell::server
