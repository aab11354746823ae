#pragma once

#include "server/attendance/CalendarDay.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace clockwell::server {

// The texts of single values on the command line and in tables. What reads one returns nothing for a text
// that is not of the form.

inline constexpr std::size_t longestName = 200; ///< characters of any name or reason, as in the schema
inline constexpr const char *lineRule = "it has to be one line of at most 200 characters";
inline constexpr const char *dayRule = "it has to be a day of the calendar, as yyyy-MM-dd";

/// A whole number in decimal digits within the range; no sign, fraction or exponent.
std::optional<long long> parseWhole(std::string_view text, long long smallest, long long largest);

/// A finite decimal number within the range.
std::optional<double> parseWithin(std::string_view text, double smallest, double largest);

/// "HH:MM" from 00:00 to 24:00 as minutes from midnight; timeOfDayText() turns them back.
std::optional<long long> parseTimeOfDay(std::string_view text);

inline constexpr std::array<const char *, 7> weekdayNames{"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};

/// "Mon-Fri", "mon,wed", "Sun-Tue,Fri" as bits, bit 0 for Monday; a range may run over Sunday. Never zero.
std::optional<long long> parseWeekdays(std::string_view text);
/// The shortest of these texts, e.g. "Mon-Wed,Fri"; "-" for no day.
std::string weekdaysText(long long weekdays);

/// A text that people will see on one line, without the blanks around it: valid UTF-8, not empty, at most so
/// many characters, none of which steers a terminal.
std::optional<std::string> parseLine(std::string_view text, std::size_t longest = longestName);

} // namespace clockwell::server
