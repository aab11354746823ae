#include "Deadline.h"

namespace clockwell::server {

namespace {
constexpr std::chrono::milliseconds repeatInterval(20);
}

Deadline::Deadline(boost::asio::ip::tcp::socket &socket)
    : m_socket(socket), m_timer(socket.get_executor()), m_round(std::make_shared<unsigned>(0))
{}

/// Each request moves the deadline several times, nearly always further away. The timer is left alone then:
/// it wakes too early once, and is set again.
void Deadline::setAt(Clock::time_point time)
{
    m_expired = false;
    m_time = time;
    if (time < m_wake)
        wakeAt(time);
}

void Deadline::clear()
{
    m_expired = false;
    m_time = never;
}

void Deadline::wakeAt(Clock::time_point time)
{
    m_wake = time;
    m_timer.expires_at(time);
    // The weak pointer tells a handler that was already queued when the deadline was destroyed.
    m_timer.async_wait(
        [this, round = std::weak_ptr(m_round), set = ++*m_round](const boost::system::error_code &error) {
            const auto current = round.lock();
            if (!error && current && *current == set)
                woken();
        });
}

void Deadline::woken()
{
    m_wake = never;
    if (m_time == never)
        return;
    if (Clock::now() < m_time) {
        wakeAt(m_time);
        return;
    }
    m_expired = true;
    boost::system::error_code ignored;
    m_socket.cancel(ignored);
    wakeAt(Clock::now() + repeatInterval);
}

} // namespace clockwell::server
