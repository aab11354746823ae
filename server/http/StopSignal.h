#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace clockwell::server {

class HttpServer;

/// Turns SIGTERM and SIGINT into an orderly stop, and SIGHUP into another look at the certificate: from its
/// creation to its end none of them ends the process. Used by one thread; there is one such object at a time.
class StopSignal
{
public:
    StopSignal();
    ~StopSignal(); ///< from now on the signals do again what they do by default
    StopSignal(const StopSignal &) = delete;
    StopSignal &operator=(const StopSignal &) = delete;

    /// Blocks until one of the signals comes, for the life of the service; returns its number.
    int wait();
    /// The same with a limit; empty when no signal came.
    std::optional<int> waitFor(std::chrono::milliseconds limit);
    /// What comes between the signal and the stop.
    struct Ending
    {
        std::function<void()> begins{};     ///< called right after the signal; may be null
        std::chrono::milliseconds drain{0}; ///< server.drain() for so long, unless another signal ends it
    };

    /// Has the server reload its certificate at each SIGHUP, until another signal comes; then drains it, if
    /// it is to be drained, and calls server.stop(). From there on a further signal ends the process at once,
    /// as people expect of a Ctrl-C pressed twice. Returns the first signal's number.
    int waitThenStop(HttpServer &server, const Ending &ending);
    int waitThenStop(HttpServer &server) { return waitThenStop(server, {}); }

private:
    void drain(HttpServer &server, std::chrono::milliseconds time);

    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace clockwell::server
