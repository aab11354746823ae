#include "TokenBuckets.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace clockwell::server {

namespace {

constexpr double secondsAMinute = 60;
constexpr double millisASecond = 1000;

} // namespace

TokenBuckets::TokenBuckets(const TokenLimits &limits)
    : m_limits(limits), m_perSecond(limits.perMinute / secondsAMinute), m_burst(std::max(1U, limits.burst))
{}

std::chrono::milliseconds TokenBuckets::take(const std::string &key, Clock::time_point now)
{
    if (m_limits.perMinute == 0)
        return std::chrono::milliseconds{0};
    const std::lock_guard lock{m_lock};
    Bucket &bucket = bucketOf(key, now);
    bucket = refilled(bucket, now);
    const auto wait = waitOf(bucket.tokens);
    if (wait == wait.zero())
        bucket.tokens -= 1;
    return wait;
}

std::chrono::milliseconds TokenBuckets::waitFor(const std::string &key, Clock::time_point now)
{
    if (m_limits.perMinute == 0)
        return std::chrono::milliseconds{0};
    const std::lock_guard lock{m_lock};
    const Bucket *bucket = find(key);
    if (bucket == nullptr && sharesBucket(key))
        bucket = find({});
    return bucket == nullptr ? std::chrono::milliseconds{0} : waitOf(refilled(*bucket, now).tokens);
}

TokenBuckets::Bucket &TokenBuckets::bucketOf(const std::string &key, Clock::time_point now)
{
    forgetFull(now);
    const std::string own = sharesBucket(key) ? std::string{} : key;
    auto known = m_older.extract(own);
    if (!known.empty())
        return m_newer.insert(std::move(known)).position->second;
    return m_newer.try_emplace(own, Bucket{m_burst, now}).first->second;
}

const TokenBuckets::Bucket *TokenBuckets::find(const std::string &key) const
{
    for (const Buckets *buckets : {&m_newer, &m_older})
        if (const auto known = buckets->find(key); known != buckets->end())
            return &known->second;
    return nullptr;
}

bool TokenBuckets::sharesBucket(const std::string &key) const
{
    return m_limits.crowd == TokenLimits::Crowd::ShareOneBucket &&
           m_newer.size() + m_older.size() >= m_limits.keys && find(key) == nullptr;
}

void TokenBuckets::forgetFull(Clock::time_point now)
{
    const std::chrono::duration<double> timeToFill{m_burst / m_perSecond};
    const bool outgrown =
        m_limits.crowd == TokenLimits::Crowd::ForgetOldest && m_newer.size() * 2 >= m_limits.keys;
    if (now - m_turned < timeToFill && !outgrown)
        return;
    m_older = std::exchange(m_newer, {});
    if (now - m_turned >= 2 * timeToFill)
        m_older.clear();
    m_turned = now;
}

TokenBuckets::Bucket TokenBuckets::refilled(const Bucket &bucket, Clock::time_point now) const
{
    const auto last = std::max(now, bucket.at); // another thread may have looked at the clock later
    const std::chrono::duration<double> rested = last - bucket.at;
    return {std::min(m_burst, bucket.tokens + rested.count() * m_perSecond), last};
}

std::chrono::milliseconds TokenBuckets::waitOf(double tokens) const
{
    if (tokens >= 1)
        return std::chrono::milliseconds{0};
    return std::chrono::milliseconds{std::llround(std::ceil((1 - tokens) / m_perSecond * millisASecond))};
}

std::size_t TokenBuckets::remembered()
{
    const std::lock_guard lock{m_lock};
    return m_newer.size() + m_older.size();
}

} // namespace clockwell::server
