#pragma once

#include "server/storage/Turns.h"

#include <chrono>
#include <mutex>
#include <optional>

namespace clockwell::server {

/// How long renewals of sessions wait for a database that another program holds. The first ones wait for
/// nearly as long as a client does. Those that come later give up together with the first: so the threads
/// that they keep are never kept for longer than a client waits for something that needs these threads but
/// not this lock. Safe on several threads.
class RenewalPatience
{
public:
    using Clock = Wait::Clock;

    explicit RenewalPatience(std::chrono::milliseconds longest) : m_longest(longest) {}

    /// Until when a renewal that begins now waits.
    Clock::time_point until(Clock::time_point now);

    /// One of them got its turn.
    void succeeded();
    /// One that began at `began` gave up at `now`.
    void gaveUp(Clock::time_point began, Clock::time_point now);

private:
    struct Outage
    {
        Clock::time_point began;
        Clock::time_point lastSeen;
    };

    const std::chrono::milliseconds m_longest;
    std::mutex m_lock;
    std::optional<Outage> m_outage;
};

} // namespace clockwell::server
