#pragma once

#include "server/auth/RecentMap.h"
#include "server/storage/Instant.h"

#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>

namespace clockwell::server {

struct AllowanceLimits
{
    double size = 1;                   ///< what may be spent at once
    std::chrono::seconds window{3600}; ///< in which all of it grows again, evenly
    std::size_t entries = 100'000;     ///< keys remembered at most
};

/// What was spent of an allowance up to a moment.
struct Spending
{
    double amount = 0;
    long long at = 0; ///< milliseconds since 1970

    /// What of it has not grown again by now. A moment in the future, from before the clock was set back,
    /// counts as now.
    double left(const AllowanceLimits &limits, Instant now) const;
};

/// An allowance for each key: within any window at most twice its size is spent, and what was given back does
/// not count. Takes the same memory for a key however large the allowance is. In memory; safe on several
/// threads.
class Allowance
{
public:
    Allowance(AllowanceLimits limits, Clock clock)
        : m_limits(limits), m_clock(std::move(clock)), m_spendings(limits.entries)
    {}

    /// Spends one. Throws ApiError 429 TOO_MANY_ATTEMPTS with Retry-After, and spends nothing, when less than
    /// one is there: its text is `complaint` followed by when to try again.
    void take(const std::string &key, std::string_view complaint);

    /// Whether less than one is there.
    bool isSpent(const std::string &key);

    /// Spends what is there or not, so that it takes the longer to grow again.
    void spend(const std::string &key, double amount);

    void giveBack(const std::string &key, double amount = 1) { spend(key, -amount); }

private:
    double spent(const std::string &key, Instant now) const;
    void add(const std::string &key, double amount, Instant now);

    AllowanceLimits m_limits;
    Clock m_clock;
    std::mutex m_lock;
    RecentMap<Spending> m_spendings;
};

} // namespace clockwell::server
