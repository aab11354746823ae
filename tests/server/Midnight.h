#pragma once

#include "server/attendance/TimeZone.h"
#include "server/storage/Instant.h"

#include <chrono>
#include <thread>

namespace clockwell::server::test {

/// For a test that goes by the machine's clock and must not see the day change: when midnight is less than a
/// minute away, waits until it has passed.
inline void passMidnight(const TimeZone &zone = TimeZone::named("UTC").value())
{
    constexpr std::chrono::minutes near{1};
    const auto isToday = [&zone, today = zone.dayOf(systemClock()())](Instant moment) {
        return zone.dayOf(moment) == today;
    };
    while (isToday(systemClock()()) && !isToday(systemClock()() + near))
        std::this_thread::sleep_for(std::chrono::milliseconds{100});
}

} // namespace clockwell::server::test
