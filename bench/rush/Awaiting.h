#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/as_tuple.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <chrono>

namespace clockwell::rush {

/// An operation awaited with this returns its error code instead of throwing it.
inline const auto withoutThrowing = boost::asio::as_tuple(boost::asio::use_awaitable);

inline boost::asio::awaitable<void> sleepFor(boost::asio::any_io_executor executor,
                                             std::chrono::steady_clock::duration time)
{
    boost::asio::steady_timer timer(executor, time);
    co_await timer.async_wait(withoutThrowing);
}

} // namespace clockwell::rush
