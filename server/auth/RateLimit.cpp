#include "server/auth/RateLimit.h"

#include "server/auth/TooManyAttempts.h"

#include <algorithm>

namespace clockwell::server {

RateLimit::Event RateLimit::take(const std::string &key, std::string_view complaint)
{
    const std::lock_guard lock{m_lock};
    const Instant now = m_clock(); // under the lock, so that events are in order of time
    Entry &entry = used(key);
    const auto wait = waitOf(entry, now);
    if (wait > std::chrono::seconds{0})
        throw tooManyAttempts(complaint, wait);
    entry.events.push_back({now, ++m_newest});
    return m_newest;
}

void RateLimit::giveBack(const std::string &key, Event event)
{
    const std::lock_guard lock{m_lock};
    const auto entry = m_entries.find(key);
    if (entry != m_entries.end())
        std::erase_if(entry->second.events, [&](const Counted &counted) { return counted.event == event; });
}

bool RateLimit::tryTake(const std::string &key)
{
    const std::lock_guard lock{m_lock};
    const Instant now = m_clock();
    Entry &entry = used(key);
    if (waitOf(entry, now) > std::chrono::seconds{0})
        return false;
    entry.events.push_back({now, ++m_newest});
    return true;
}

void RateLimit::forget(const std::string &key)
{
    const std::lock_guard lock{m_lock};
    const auto entry = m_entries.find(key);
    if (entry == m_entries.end())
        return;
    m_uses.erase(entry->second.use);
    m_entries.erase(entry);
}

void RateLimit::forgetIf(const std::function<bool(std::string_view)> &matches)
{
    const std::lock_guard lock{m_lock};
    m_uses.remove_if([&](const std::string &key) { return matches(key) && m_entries.erase(key) == 1; });
}

RateLimit::Entry &RateLimit::used(const std::string &key)
{
    const auto known = m_entries.find(key);
    if (known != m_entries.end()) {
        m_uses.splice(m_uses.end(), m_uses, known->second.use);
        return known->second;
    }
    if (m_entries.size() >= m_limits.entries) {
        m_entries.erase(m_uses.front());
        m_uses.pop_front();
    }
    m_uses.push_back(key);
    return m_entries.emplace(key, Entry{{}, std::prev(m_uses.end())}).first->second;
}

/// Zero when another event is within the limit.
std::chrono::seconds RateLimit::waitOf(Entry &entry, Instant now) const
{
    for (Counted &counted : entry.events)
        counted.at = std::min(counted.at, now);
    std::erase_if(entry.events, [&](const Counted &counted) { return counted.at + m_limits.window <= now; });
    if (entry.events.size() < m_limits.attempts)
        return std::chrono::seconds{0};
    auto next = entry.events.front().at + m_limits.window;
    if (m_limits.pause > std::chrono::seconds{0})
        next = std::min(next, entry.events.back().at + m_limits.pause);
    return std::max(std::chrono::seconds{0}, std::chrono::ceil<std::chrono::seconds>(next - now));
}

} // namespace clockwell::server
