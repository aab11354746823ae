#pragma once

#include "server/attendance/TimeZone.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace clockwell::server {

/// A time on an office's wall clock. How far the clock is ahead of UTC is said only where it shows a time
/// twice.
struct ClockTime
{
    long long minute = 0; ///< from midnight, 0 to 1439
    std::optional<std::chrono::minutes> offset;
};

inline constexpr const char *clockTimeRule = "it has to be a time from 00:00 to 23:59, as HH:MM";

/// "HH:MM", or with the offset from UTC "HH:MM+02:00"; nothing for any other form.
std::optional<ClockTime> parseClockTime(std::string_view text);

/// When the clock shows this time on this day. Throws AdminError Refused when a clock change skips it, and
/// when it comes twice and the offset does not say which is meant.
Instant momentOf(const TimeZone &zone, Day day, const ClockTime &time);

/// "HH:mm:ss" on the wall clock.
std::string wallClockText(const TimeZone &zone, Instant instant);

} // namespace clockwell::server
