#pragma once

#include "server/attendance/CalendarDay.h"

#include <chrono>
#include <optional>

namespace clockwell::server {

/// A range of days, both ends included.
struct DayRange
{
    Day first;
    Day last;
};

/// How far from today a month may be, some 50 years. Beyond it the year is one of a calendar that is not
/// known here, such as the years of Japan's eras, and would be answered with a month that nobody meant.
inline constexpr std::chrono::days furthestMonth{50 * 365};

/// The days of the month that a device asks for, whose year and month it counts in its own calendar: the
/// Gregorian, Buddhist, Persian or Umm al-Qura one. The text does not say which, so that it is the one in
/// which the month is nearest to today; the calendars' years lie decades apart. Nothing when it is near in
/// none of them.
std::optional<DayRange> daysOfDeviceMonth(Month asked, Day today);

} // namespace clockwell::server
