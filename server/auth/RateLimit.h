#pragma once

#include "server/auth/RecentMap.h"
#include "server/storage/Instant.h"

#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace clockwell::server {

struct ThrottleLimits
{
    std::size_t attempts = 5;         ///< events within the window before one is refused
    std::chrono::seconds window{900}; ///< counted back from now
    std::size_t entries = 100'000; ///< keys remembered at most; the one idle for longest is forgotten first
    std::chrono::seconds pause{0}; ///< an event so long after the last one is never refused; 0: none is
};

/// Counts events by key in a sliding window, in memory. Events that are in the future happened before the
/// machine's clock was set back, nobody knows when: they count as of now, so that they are neither forgiven
/// nor held against anybody for longer than the window. Safe on several threads.
class RateLimit
{
public:
    RateLimit(ThrottleLimits limits, Clock clock)
        : m_limits(limits), m_clock(std::move(clock)), m_counted(limits.entries)
    {}

    /// One counted event.
    using Event = unsigned long long;

    /// Counts an event. Throws ApiError 429 TOO_MANY_ATTEMPTS with Retry-After, and without counting, when
    /// there were too many: its text is `complaint` followed by when to try again.
    Event take(const std::string &key, std::string_view complaint);

    /// Counts this event no more.
    void giveBack(const std::string &key, Event event);

    /// Counts an event; false, without counting, when there were too many.
    bool tryTake(const std::string &key);

    /// Forgets what was counted for the key.
    void forget(const std::string &key);

    /// Forgets what was counted for the keys that `matches` accepts; goes through all of them.
    void forgetIf(const std::function<bool(std::string_view)> &matches);

private:
    struct Counted
    {
        Instant at;
        Event event;
    };
    using Events = std::vector<Counted>; // in order of time

    std::chrono::seconds waitOf(Events &events, Instant now) const;

    ThrottleLimits m_limits;
    Clock m_clock;
    std::mutex m_lock;
    RecentMap<Events> m_counted;
    Event m_newest = 0;
};

} // namespace clockwell::server
