#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <unordered_map>

namespace clockwell::server {

/// A token bucket for each client address. Not thread-safe: it belongs to the I/O thread. Its memory is
/// bounded: full buckets are forgotten, which changes nothing, and beyond `maxAddresses` the newcomers share
/// one bucket.
class Throttle
{
public:
    using Clock = std::chrono::steady_clock;
    static constexpr std::size_t maxAddresses = 100'000;

    /// `perMinute` 0 lets everything pass.
    Throttle(unsigned perMinute, unsigned burst);

    /// Takes one token of `address`. Zero when there was one, else the time until there is.
    std::chrono::milliseconds take(const std::string &address, Clock::time_point now);

    /// Zero when `address` has a token, else the time until it has; takes none.
    std::chrono::milliseconds waitFor(const std::string &address, Clock::time_point now) const;

    std::size_t trackedAddresses() const { return m_buckets.size(); }

private:
    struct Bucket
    {
        double tokens;
        Clock::time_point at;
    };

    std::chrono::milliseconds waitOf(double tokens) const;
    double refilled(const Bucket &bucket, Clock::time_point now) const;
    void forgetFull(Clock::time_point now);

    double m_perSecond;
    double m_burst;
    std::unordered_map<std::string, Bucket> m_buckets;
    Clock::time_point m_nextSweep{};
};

} // namespace clockwell::server
