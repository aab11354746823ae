#pragma once

#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>
#include <unordered_map>

namespace clockwell::server {

/// Requests that one account may make, wherever they come from.
struct AccountLimits
{
    unsigned perMinute = 240;      ///< in the long run; 0: no limit
    unsigned burst = 120;          ///< at once, after a rest; at least 1
    std::size_t accounts = 50'000; ///< half of those remembered at most
};

/// A token bucket for each account, in memory. An account that rested until its bucket was full is forgotten,
/// which changes nothing; when there are too many, those that rested longest get a full bucket early. Safe on
/// several threads.
class AccountLimit
{
public:
    using Clock = std::chrono::steady_clock;

    explicit AccountLimit(AccountLimits limits);

    /// Takes one request. Zero when it may pass, else the time until the next one may.
    std::chrono::milliseconds take(const std::string &account, Clock::time_point now);

    std::size_t remembered();

private:
    struct Bucket
    {
        double tokens;
        Clock::time_point at;
    };
    using Buckets = std::unordered_map<std::string, Bucket>;

    Bucket &bucketOf(const std::string &account, Clock::time_point now);

    const AccountLimits m_limits;
    const double m_perSecond;
    const double m_burst;
    std::mutex m_lock;
    // Two generations: what is used moves to the newer one. The older one, once it is as old as a bucket
    // takes to fill, holds nothing but full buckets, and goes away at once.
    Buckets m_newer;
    Buckets m_older;
    Clock::time_point m_turned{};
};

} // namespace clockwell::server
