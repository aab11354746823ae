#pragma once

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <chrono>
#include <memory>

namespace clockwell::server {

/// Cancels the operations of a socket when a point in time has passed, and goes on doing so until it is set
/// anew or cleared: an operation made of several may start its next one after the first cancellation. I/O
/// thread only.
class Deadline
{
public:
    using Clock = std::chrono::steady_clock;

    /// `socket` must outlive the deadline.
    explicit Deadline(boost::asio::ip::tcp::socket &socket);

    void setAt(Clock::time_point time);
    void clear();
    bool expired() const { return m_expired; }

private:
    static constexpr auto never = Clock::time_point::max();

    void wakeAt(Clock::time_point time);
    void woken();

    boost::asio::ip::tcp::socket &m_socket;
    boost::asio::steady_timer m_timer;
    std::shared_ptr<unsigned> m_round; // counts settings of the timer; handlers of earlier ones do nothing
    Clock::time_point m_time = never;
    Clock::time_point m_wake = never; // when the timer wakes; not after m_time, often long before
    bool m_expired = false;
};

} // namespace clockwell::server
