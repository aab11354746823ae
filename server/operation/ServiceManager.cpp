#include "server/operation/ServiceManager.h"

#include <systemd/sd-daemon.h>

#include <cstdint>
#include <utility>

namespace clockwell::server {

namespace {

constexpr int keepEnvironment = 0;

void tell(const char *state)
{
    ::sd_notify(keepEnvironment, state);
}

} // namespace

ServiceManager::ServiceManager() = default;

ServiceManager::~ServiceManager()
{
    stopping();
}

void ServiceManager::ready(Probe probe)
{
    tell("READY=1");
    std::uint64_t limit = 0;
    if (::sd_watchdog_enabled(keepEnvironment, &limit) <= 0)
        return;
    const std::chrono::microseconds period{limit / 2}; // as the manual page advises
    m_watch = std::jthread{[this, period, probe = std::move(probe)](const std::stop_token &stop) {
        watch(stop, period, probe);
    }};
}

void ServiceManager::stopping()
{
    {
        const std::lock_guard lock{m_state->lock};
        if (std::exchange(m_state->stopping, true))
            return;
        m_state->changed.notify_all();
    }
    tell("STOPPING=1"); // blocks while systemd does not listen
}

/// Asks again only once it was answered, so that a service that hangs does not find a crowd of questions.
void ServiceManager::watch(const std::stop_token &stop, std::chrono::microseconds period, const Probe &probe)
{
    bool isAsked = false;
    std::unique_lock lock{m_state->lock};
    while (!stop.stop_requested()) {
        const auto next = std::chrono::steady_clock::now() + period;
        if (!m_state->stopping && !std::exchange(isAsked, true))
            probe([state = m_state] {
                const std::lock_guard answering{state->lock};
                state->answered = true;
                state->changed.notify_all();
            });
        const bool isAlive = m_state->changed.wait_until(
            lock, stop, next, [this] { return m_state->answered || m_state->stopping; });
        if (isAlive) {
            m_state->answered = isAsked = false;
            lock.unlock();
            tell("WATCHDOG=1");
            lock.lock();
        }
        m_state->changed.wait_until(lock, stop, next, [] { return false; });
    }
}

} // namespace clockwell::server
