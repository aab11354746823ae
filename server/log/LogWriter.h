#pragma once

#include <atomic>
#include <chrono>
#include <string_view>

namespace clockwell::server {

/// Writes lines into a file, a terminal, or a pipe or socket whose reader may pause or go away. Used by one
/// thread at a time, but for waitUntil(). The process must ignore SIGPIPE.
class LogWriter
{
public:
    using Time = std::chrono::steady_clock::time_point;

    /// `descriptor` is the caller's and stays open for longer than this. When it is closed, every line is
    /// lost.
    explicit LogWriter(int descriptor);
    ~LogWriter();
    LogWriter(const LogWriter &) = delete;
    LogWriter &operator=(const LogWriter &) = delete;

    /// Writes a line with its '\n'; waits while the reader pauses. False when it is lost: nobody reads, the
    /// disk is full, or the time for waiting is over.
    bool write(std::string_view line);

    /// After `end` nothing is waited for; from any thread.
    void waitUntil(Time end) { m_end = end; }

private:
    bool writeAll(std::string_view text);
    bool waitForRoom() const;

    int m_descriptor;
    bool m_isOwn = false;
    bool m_isSocket = false;
    bool m_neverBlocks = false; // it says EAGAIN instead
    bool m_isTorn = false;      // what was written last ends within a line
    std::atomic<Time> m_end{Time::max()};
};

} // namespace clockwell::server
