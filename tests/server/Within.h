#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace clockwell::server::test {

/// Whether it holds before the limit is over; asks every few milliseconds.
inline bool within(std::chrono::seconds limit, const std::function<bool()> &holds)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!holds()) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds{5});
    }
    return true;
}

} // namespace clockwell::server::test
