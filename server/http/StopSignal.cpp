#include "StopSignal.h"

#include "HttpServer.h"

#include <pthread.h>

#include <cerrno>
#include <system_error>

namespace clockwell::server {

StopSignal::StopSignal()
{
    sigemptyset(&m_signals);
    sigaddset(&m_signals, SIGINT);
    sigaddset(&m_signals, SIGTERM);
    sigaddset(&m_signals, SIGHUP);
    if (const int error = pthread_sigmask(SIG_BLOCK, &m_signals, &m_previous))
        throw std::system_error(error, std::generic_category(), "cannot block signals");
    m_blocked = true;
}

StopSignal::~StopSignal()
{
    sigset_t hangUp{};
    sigemptyset(&hangUp);
    sigaddset(&hangUp, SIGHUP);
    const timespec noTime{};
    if (m_blocked)
        sigtimedwait(&hangUp, nullptr, &noTime); // one that came too late must not end the process now
    restoreMask(false);
    m_blocked = false;
}

void StopSignal::restoreMask(bool hangUpStaysBlocked)
{
    sigset_t mask = m_previous;
    if (hangUpStaysBlocked)
        sigaddset(&mask, SIGHUP);
    if (m_blocked)
        pthread_sigmask(SIG_SETMASK, &mask, nullptr);
}

int StopSignal::wait()
{
    int number = 0;
    if (const int error = sigwait(&m_signals, &number))
        throw std::system_error(error, std::generic_category(), "cannot wait for signals");
    return number;
}

std::optional<int> StopSignal::waitFor(std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    for (auto left = limit; left >= left.zero();) {
        const auto whole = std::chrono::duration_cast<std::chrono::seconds>(left);
        const timespec time{whole.count(), std::chrono::nanoseconds(left - whole).count()};
        const int number = sigtimedwait(&m_signals, nullptr, &time);
        if (number > 0)
            return number;
        if (errno != EINTR)
            break;
        left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    }
    return std::nullopt;
}

int StopSignal::waitThenStop(HttpServer &server)
{
    int number = wait();
    for (; number == SIGHUP; number = wait())
        server.reloadCertificate();
    restoreMask(true);
    server.stop();
    return number;
}

} // namespace clockwell::server
