#pragma once

#include <string>
#include <string_view>

namespace clockwell {

/// Rewrites a JSON text so that the parser accepts all its numbers: a number that fits no 64-bit integer
/// becomes the nearest double, and a number beyond the range of a double becomes a list in a list, a value
/// that no field accepts.
///
/// Invalid JSON remains invalid. Meant for texts that the parser has rejected because of a number: it takes
/// linear time, but is slower than parsing.
std::string fittingNumbers(std::string_view json);

} // namespace clockwell
