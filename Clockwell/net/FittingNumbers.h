#pragma once

#include <string>
#include <string_view>

namespace clockwell {

/// A JSON text with the same meaning whose numbers all fit: one that no 64-bit integer holds is written as
/// the nearest double, and one beyond the range of a double as a list in a list, which no field takes.
///
/// A text that is no JSON stays none. Meant for texts in which a number has already been found too big:
/// linear in their length, but slower than reading them.
std::string fittingNumbers(std::string_view json);

} // namespace clockwell
