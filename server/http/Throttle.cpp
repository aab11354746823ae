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
    const auto wait = waitOf(bucket.tokens);
    if (wait == wait.zero())
        bucket.tokens -= 1;
    return wait;
}

std::chrono::milliseconds Throttle::waitFor(const std::string &address, Clock::time_point now) const
{
    if (m_perSecond <= 0)
        return std::chrono::milliseconds::zero();
    auto bucket = m_buckets.find(address);
    if (bucket == m_buckets.end() && m_buckets.size() >= maxAddresses)
        bucket = m_buckets.find(std::string());
    return bucket == m_buckets.end() ? std::chrono::milliseconds::zero()
                                     : waitOf(refilled(bucket->second, now));
}

std::chrono::milliseconds Throttle::waitOf(double tokens) const
{
    if (tokens >= 1)
        return std::chrono::milliseconds::zero();
    return std::chrono::milliseconds(std::lround(std::ceil((1 - tokens) / m_perSecond * 1000)));
}

} // namespace clockwell::server
