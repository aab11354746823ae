#include "Throttle.h"

#include <algorithm>
#include <cmath>

namespace clockwell::server {

namespace {
constexpr std::chrono::seconds sweepInterval(10);
}

Throttle::Throttle(unsigned perMinute, unsigned burst)
    : m_perSecond(perMinute / 60.0), m_burst(std::max(1U, burst))
{}

double Throttle::refilled(const Bucket &bucket, Clock::time_point now) const
{
    const std::chrono::duration<double> elapsed = now - bucket.at;
    return std::min(m_burst, bucket.tokens + elapsed.count() * m_perSecond);
}

void Throttle::forgetFull(Clock::time_point now)
{
    if (now < m_nextSweep)
        return;
    m_nextSweep = now + sweepInterval;
    std::erase_if(m_buckets,
                  [this, now](const auto &entry) { return refilled(entry.second, now) >= m_burst; });
}

std::chrono::milliseconds Throttle::take(const std::string &address, Clock::time_point now)
{
    if (m_perSecond <= 0)
        return std::chrono::milliseconds::zero();
    forgetFull(now);
    const bool crowded = m_buckets.size() >= maxAddresses && !m_buckets.contains(address);
    auto &bucket =
        m_buckets.try_emplace(crowded ? std::string() : address, Bucket{m_burst, now}).first->second;
    bucket = {refilled(bucket, now), now};
    if (bucket.tokens < 1)
        return std::chrono::milliseconds(std::lround(std::ceil((1 - bucket.tokens) / m_perSecond * 1000)));
    bucket.tokens -= 1;
    return std::chrono::milliseconds::zero();
}

} // namespace clockwell::server
