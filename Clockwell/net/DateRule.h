#pragma once

#include "net/WireRecords.h"

#include <optional>
#include <string>
#include <string_view>

namespace clockwell {

/// Reads an internet date-time (RFC 3339: YYYY-MM-DDThh:mm:ss[.fraction](Z|+hh:mm|-hh:mm)); none for anything
/// else. The fraction may have one to nine digits; what is finer than a millisecond is cut off, not rounded.
std::optional<Instant> parseInstant(std::string_view text) noexcept;

/// The moment as a date-time that reads back the same, in UTC and with milliseconds; none for a year that
/// does not have four digits.
std::optional<std::string> instantText(Instant moment);

} // namespace clockwell
