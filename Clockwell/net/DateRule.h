#pragma once

#include "net/WireRecords.h"

#include <optional>
#include <string>
#include <string_view>

namespace clockwell {

/// Parses an internet date-time (RFC 3339: YYYY-MM-DDThh:mm:ss[.fraction](Z|+hh:mm|-hh:mm)); nullopt for
/// anything else. The fraction may have one to nine digits; it is truncated to milliseconds, not rounded.
std::optional<Instant> parseInstant(std::string_view text) noexcept;

/// Formats the moment as a date-time in UTC with milliseconds, which parses back to the same value; nullopt
/// for a year that does not have four digits.
std::optional<std::string> instantText(Instant moment);

} // namespace clockwell
