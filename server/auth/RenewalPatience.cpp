#include "server/auth/RenewalPatience.h"

#include <algorithm>

namespace clockwell::server {

namespace {

constexpr std::chrono::milliseconds shortest{200}; // enough for a database that is not held any more

} // namespace

RenewalPatience::Clock::time_point RenewalPatience::until(Clock::time_point now)
{
    const std::lock_guard lock{m_lock};
    if (m_outage && now - m_outage->lastSeen > m_longest)
        m_outage.reset(); // nobody knows whether it still lasts
    const auto began = m_outage ? m_outage->began : now;
    return std::max(began + m_longest, now + shortest);
}

void RenewalPatience::succeeded()
{
    const std::lock_guard lock{m_lock};
    m_outage.reset();
}

void RenewalPatience::gaveUp(Clock::time_point began, Clock::time_point now)
{
    const std::lock_guard lock{m_lock};
    m_outage = {m_outage ? m_outage->began : began, now};
}

} // namespace clockwell::server
