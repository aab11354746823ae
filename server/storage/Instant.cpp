#include "server/storage/Instant.h"

#include <array>
#include <cstdio>

namespace clockwell::server {

Clock systemClock()
{
    return [] {
        return std::chrono::time_point_cast<std::chrono::milliseconds>(std::chrono::system_clock::now());
    };
}

std::string toIsoText(Instant instant)
{
    const auto midnight = std::chrono::floor<std::chrono::days>(instant);
    const std::chrono::year_month_day day{midnight};
    const std::chrono::hh_mm_ss time{instant - midnight};
    std::array<char, 48> text{};
    const int length = std::snprintf(
        text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(day.year()),
        static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
        static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
        static_cast<int>(time.seconds().count()), static_cast<int>(time.subseconds().count()));
    return {text.data(), static_cast<std::size_t>(length)};
}

} // namespace clockwell::server
