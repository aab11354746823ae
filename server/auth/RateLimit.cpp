#include "server/auth/RateLimit.h"

#include "server/auth/TooManyAttempts.h"

#include <algorithm>

namespace clockwell::server {

RateLimit::Event RateLimit::take(const std::string &key, std::string_view complaint)
{
    const std::lock_guard lock{m_lock};
    const Instant now = m_clock(); // under the lock, so that events are in order of time
    Events &events = m_counted.write(key);
    const auto wait = waitOf(events, now);
    if (wait > std::chrono::seconds{0})
        throw tooManyAttempts(complaint, wait);
    events.push_back({now, ++m_newest});
    return m_newest;
}

void RateLimit::giveBack(const std::string &key, Event event)
{
    const std::lock_guard lock{m_lock};
    if (m_counted.find(key) != nullptr)
        std::erase_if(m_counted.write(key), [&](const Counted &counted) { return counted.event == event; });
}

bool RateLimit::tryTake(const std::string &key)
{
    const std::lock_guard lock{m_lock};
    const Instant now = m_clock();
    Events &events = m_counted.write(key);
    if (waitOf(events, now) > std::chrono::seconds{0})
        return false;
    events.push_back({now, ++m_newest});
    return true;
}

void RateLimit::forget(const std::string &key)
{
    const std::lock_guard lock{m_lock};
    m_counted.erase(key);
}

void RateLimit::forgetIf(const std::function<bool(std::string_view)> &matches)
{
    const std::lock_guard lock{m_lock};
    m_counted.eraseIf(matches);
}

/// Zero when another event is within the limit.
std::chrono::seconds RateLimit::waitOf(Events &events, Instant now) const
{
    for (Counted &counted : events)
        counted.at = std::min(counted.at, now);
    std::erase_if(events, [&](const Counted &counted) { return counted.at + m_limits.window <= now; });
    if (events.size() < m_limits.attempts)
        return std::chrono::seconds{0};
    auto next = events.front().at + m_limits.window;
    if (m_limits.pause > std::chrono::seconds{0})
        next = std::min(next, events.back().at + m_limits.pause);
    return std::max(std::chrono::seconds{0}, std::chrono::ceil<std::chrono::seconds>(next - now));
}

} // namespace clockwell::server
