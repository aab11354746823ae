#pragma once

#include "net/WireRecords.h"

#include <optional>
#include <string_view>

namespace clockwell {

/// Reads an internet date-time (RFC 3339: YYYY-MM-DDThh:mm:ss[.fraction](Z|+hh:mm|-hh:mm)); none for anything
/// else. The fraction may have one to nine digits; what is finer than a millisecond is cut off, not rounded.
std::optional<Instant> parseInstant(std::string_view text) noexcept;

} // namespace clockwell
