#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace clockwell::server {

/// Tells systemd, as in sd_notify(3), that the service is ready and that it stops, and proves to its watchdog
/// that it lives. Does nothing in a process that systemd did not start. Make it before whatever may take long
/// to end, for until its own end it keeps the watchdog quiet.
class ServiceManager
{
public:
    /// Calls its argument, on any thread, as soon as the service has done what only a living one does.
    /// Returns at once.
    using Probe = std::function<void(std::function<void()> answered)>;

    ServiceManager();
    ~ServiceManager();
    ServiceManager(const ServiceManager &) = delete;
    ServiceManager &operator=(const ServiceManager &) = delete;

    /// The service is ready. From now on the watchdog hears of it each time the probe is answered, at the
    /// pace that it asks for.
    void ready(Probe probe);

    /// The service ends: how long it takes is limited elsewhere from now on, so the watchdog just hears that
    /// the process is there. Once this returns the probe is not called any more. May be called twice.
    void stopping();

private:
    struct State
    {
        std::mutex lock; // guards the rest
        std::condition_variable_any changed;
        bool answered = false;
        bool stopping = false;
    };

    void watch(const std::stop_token &stop, std::chrono::microseconds period, const Probe &probe);

    const std::shared_ptr<State> m_state = std::make_shared<State>(); // a late answer may outlive this
    std::jthread m_watch;
};

/// A service that is ready, from its making to its end or the manager's stopping().
class ReadyService
{
public:
    /// `manager` outlives this.
    ReadyService(ServiceManager &manager, ServiceManager::Probe probe) : m_manager(manager)
    {
        m_manager.ready(std::move(probe));
    }
    ~ReadyService() { m_manager.stopping(); }
    ReadyService(const ReadyService &) = delete;
    ReadyService &operator=(const ReadyService &) = delete;

private:
    ServiceManager &m_manager;
};

} // namespace clockwell::server
