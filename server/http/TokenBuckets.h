#pragma once

#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>
#include <unordered_map>

namespace clockwell::server {

struct TokenLimits
{
    /// What becomes of newcomers when `keys` buckets are remembered and none of them is full.
    enum class Crowd {
        ShareOneBucket, ///< all of them together: however many keys somebody invents, no more passes
        ForgetOldest    ///< those that rested longest get a full bucket early: nobody is refused for others
    };

    unsigned perMinute = 0;     ///< in the long run; 0: no limit
    unsigned burst = 1;         ///< at once, after a rest; at least 1
    std::size_t keys = 100'000; ///< remembered at most
    Crowd crowd = Crowd::ShareOneBucket;
};

/// A token bucket for each key, in memory. One that was left alone until it was full is forgotten, which
/// changes nothing. Safe on several threads.
class TokenBuckets
{
public:
    using Clock = std::chrono::steady_clock;

    explicit TokenBuckets(const TokenLimits &limits);

    /// Takes one token. Zero when there was one, else the time until there is.
    std::chrono::milliseconds take(const std::string &key, Clock::time_point now);

    /// Zero when there is a token, else the time until there is one; takes none.
    std::chrono::milliseconds waitFor(const std::string &key, Clock::time_point now);

    std::size_t remembered();

private:
    struct Bucket
    {
        double tokens;
        Clock::time_point at;
    };
    using Buckets = std::unordered_map<std::string, Bucket>;

    Bucket &bucketOf(const std::string &key, Clock::time_point now);
    const Bucket *find(const std::string &key) const; // null for a full one that was forgotten
    bool sharesBucket(const std::string &key) const;
    void forgetFull(Clock::time_point now);
    Bucket refilled(const Bucket &bucket, Clock::time_point now) const;
    std::chrono::milliseconds waitOf(double tokens) const;

    const TokenLimits m_limits;
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
