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

    /// Takes one request of `address`. Zero when it may pass, else the time until the next one may.
    std::chrono::milliseconds take(const std::string &address, Clock::time_point now);

    std::size_t trackedAddresses() const { return m_buckets.size(); }

private:
    struct Bucket
    {
        double tokens;
        Clock::time_point at;
    };

    double refilled(const Bucket &bucket, Clock::time_point now) const;
    void forgetFull(Clock::time_point now);

    double m_perSecond;
    double m_burst;
    std::unordered_map<std::string, Bucket> m_buckets;
    Clock::time_point m_nextSweep{};
};

} // namespace clockwell::server
