#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace clockwell::server {

/// A date on an office's wall calendar, without a time zone. Ordered, and counted with std::chrono::days.
using Day = std::chrono::local_days;

/// A month of the calendar, e.g. 2026-12.
using Month = std::chrono::year_month;

/// "yyyy-MM-dd"; texts of that form sort like the days themselves (years 0001 to 9999).
std::string toText(Day day);
/// "yyyy-MM"
std::string toText(Month month);

/// Reads exactly "yyyy-MM-dd"; nothing for any other form and for dates that do not exist.
std::optional<Day> parseDay(std::string_view text);
/// Reads exactly "yyyy-MM", months 01 to 12.
std::optional<Month> parseMonth(std::string_view text);

Month monthOf(Day day);
Day firstDayOf(Month month);
Day lastDayOf(Month month);

/// "HH:mm" for minutes from midnight; the end of the day is "24:00".
std::string timeOfDayText(long long minute);

/// 0 for Monday to 6 for Sunday.
unsigned weekdayIndex(Day day);

} // namespace clockwell::server
