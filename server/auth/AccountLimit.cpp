#include "server/auth/AccountLimit.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace clockwell::server {

namespace {

constexpr double secondsAMinute = 60;
constexpr double millisASecond = 1000;

} // namespace

AccountLimit::AccountLimit(AccountLimits limits)
    : m_limits(limits), m_perSecond(limits.perMinute / secondsAMinute), m_burst(std::max(1U, limits.burst))
{}

std::chrono::milliseconds AccountLimit::take(const std::string &account, Clock::time_point now)
{
    if (m_limits.perMinute == 0)
        return std::chrono::milliseconds{0};
    const std::lock_guard lock{m_lock};
    Bucket &bucket = bucketOf(account, now);
    const auto last = std::max(now, bucket.at); // another thread may have looked at the clock later
    const std::chrono::duration<double> rested = last - bucket.at;
    bucket = {std::min(m_burst, bucket.tokens + rested.count() * m_perSecond), last};
    if (bucket.tokens < 1)
        return std::chrono::milliseconds{
            std::llround(std::ceil((1 - bucket.tokens) / m_perSecond * millisASecond))};
    bucket.tokens -= 1;
    return std::chrono::milliseconds{0};
}

AccountLimit::Bucket &AccountLimit::bucketOf(const std::string &account, Clock::time_point now)
{
    const std::chrono::duration<double> timeToFill{m_burst / m_perSecond};
    if (now - m_turned >= timeToFill || m_newer.size() >= m_limits.accounts) {
        m_older = std::exchange(m_newer, {});
        m_turned = now;
    }
    auto known = m_older.extract(account);
    if (!known.empty())
        return m_newer.insert(std::move(known)).position->second;
    return m_newer.try_emplace(account, Bucket{m_burst, now}).first->second;
}

std::size_t AccountLimit::remembered()
{
    const std::lock_guard lock{m_lock};
    return m_newer.size() + m_older.size();
}

} // namespace clockwell::server
