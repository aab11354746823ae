#include "server/LoginThrottle.h"

#include "server/ApiError.h"
#include "server/RateLimit.h"
#include "server/http/PeerAddress.h"

#include <algorithm>
#include <iterator>

namespace clockwell::server {

void LoginThrottle::begin(const std::string &account, const std::string &address, const char *complaint)
{
    const std::lock_guard lock{m_lock};
    const Instant now = m_clock(); // under the lock, so that attempts are in order of time
    if (m_attempts.size() >= m_limits.entries)
        makeRoom(now);
    auto &attempts = m_attempts[{account, networkOf(address)}];
    dropOld(attempts, now);
    if (attempts.size() < m_limits.attempts) {
        attempts.push_back(now);
        return;
    }
    const auto wait = std::chrono::ceil<std::chrono::seconds>(attempts.front() + m_limits.window - now);
    throw ApiError{429, "TOO_MANY_ATTEMPTS",
                   std::string{complaint} + " Please try again in " + waitText(wait) + "."}
        .retryAfter(wait);
}

void LoginThrottle::succeed(const std::string &account, const std::string &address)
{
    const std::lock_guard lock{m_lock};
    m_attempts.erase({account, networkOf(address)});
}

void LoginThrottle::forgetAccount(const std::string &account)
{
    const std::lock_guard lock{m_lock};
    auto entry = m_attempts.lower_bound({account, ""});
    while (entry != m_attempts.end() && entry->first.first == account)
        entry = m_attempts.erase(entry);
}

void LoginThrottle::dropOld(std::vector<Instant> &attempts, Instant now) const
{
    forgetOld(attempts, now, m_limits.window);
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
