#include "server/LoginThrottle.h"

#include "server/ApiError.h"

#include <algorithm>
#include <iterator>

namespace clockwell::server {

namespace {

std::string waitText(std::chrono::seconds wait)
{
    if (wait <= std::chrono::seconds{90})
        return std::to_string(wait.count()) + (wait.count() == 1 ? " second" : " seconds");
    return std::to_string(std::chrono::ceil<std::chrono::minutes>(wait).count()) + " minutes";
}

} // namespace

void LoginThrottle::begin(const std::string &account, const std::string &address)
{
    const Instant now = m_clock();
    const std::lock_guard lock{m_lock};
    if (m_attempts.size() >= m_limits.entries)
        makeRoom(now);
    auto &attempts = m_attempts[{account, address}];
    dropOld(attempts, now);
    if (attempts.size() < m_limits.attempts) {
        attempts.push_back(now);
        return;
    }
    const auto wait = std::chrono::ceil<std::chrono::seconds>(attempts.front() + m_limits.window - now);
    throw ApiError{429, "TOO_MANY_ATTEMPTS",
                   "Too many attempts to sign in. Please try again in " + waitText(wait) + "."}
        .retryAfter(wait);
}

void LoginThrottle::succeed(const std::string &account, const std::string &address)
{
    const std::lock_guard lock{m_lock};
    m_attempts.erase({account, address});
}

void LoginThrottle::dropOld(std::vector<Instant> &attempts, Instant now) const
{
    std::erase_if(attempts, [&](Instant attempt) { return attempt + m_limits.window <= now; });
}

void LoginThrottle::makeRoom(Instant now)
{
    for (auto entry = m_attempts.begin(); entry != m_attempts.end();) {
        dropOld(entry->second, now);
        entry = entry->second.empty() ? m_attempts.erase(entry) : std::next(entry);
    }
    if (m_attempts.size() < m_limits.entries)
        return;
    const auto idle =
        std::ranges::min_element(m_attempts, {}, [](const auto &entry) { return entry.second.back(); });
    m_attempts.erase(idle);
}

} // namespace clockwell::server
