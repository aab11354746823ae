#pragma once

#include <chrono>
#include <csignal>
#include <optional>

namespace clockwell::server {

class HttpServer;

/// Turns SIGTERM and SIGINT into an orderly stop, and SIGHUP into another look at the certificate. Create it
/// in main() before any thread is started: the signals are blocked in the creating thread and in those it
/// starts, so that only wait() receives them.
class StopSignal
{
public:
    StopSignal();
    ~StopSignal(); ///< restores the signal mask of the creating thread
    StopSignal(const StopSignal &) = delete;
    StopSignal &operator=(const StopSignal &) = delete;

    /// Blocks until one of the signals comes, for the life of the service; returns its number.
    int wait();
    /// The same with a limit; empty when no signal came.
    std::optional<int> waitFor(std::chrono::milliseconds limit);
    /// Has the server reload its certificate at each SIGHUP, until another signal comes; then server.stop().
    /// From that signal on a second one ends the process at once, as people expect of a Ctrl-C pressed twice.
    /// Returns the signal's number.
    int waitThenStop(HttpServer &server);

private:
    void restoreMask(bool hangUpStaysBlocked);

    sigset_t m_signals{};
    sigset_t m_previous{};
    bool m_blocked = false;
};

} // namespace clockwell::server
