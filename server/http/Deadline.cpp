#include "Deadline.h"

namespace clockwell::server {

namespace {
constexpr std::chrono::milliseconds repeatInterval(20);
}

Deadline::Deadline(boost::asio::ip::tcp::socket &socket)
    : m_socket(socket), m_timer(socket.get_executor()), m_round(std::make_shared<unsigned>(0))
{}

void Deadline::setAt(Clock::time_point time)
{
    m_expired = false;
    ++*m_round;
    m_timer.expires_at(time);
    wait();
}

void Deadline::clear()
{
    m_expired = false;
    ++*m_round;
    m_timer.cancel();
}

void Deadline::wait()
{
    // The weak pointer tells a handler that was already queued when the deadline was destroyed.
    m_timer.async_wait(
        [this, round = std::weak_ptr(m_round), set = *m_round](const boost::system::error_code &error) {
            const auto current = round.lock();
            if (!error && current && *current == set)
                expire();
        });
}

void Deadline::expire()
{
    m_expired = true;
    boost::system::error_code ignored;
    m_socket.cancel(ignored);
    m_timer.expires_after(repeatInterval);
    wait();
}

} // namespace clockwell::server
