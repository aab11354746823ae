#pragma once

#include <optional>
#include <string_view>

namespace clockwell {

/// Parses a number like the C library's strtod in the "C" locale, so also "inf" and "0x10". Nullopt unless
/// strtod accepts the whole text and the text does not begin with white space or NUL. A number beyond the
/// range of a double is infinite, one too small for it is zero.
std::optional<double> readDecimal(std::string_view text);

} // namespace clockwell
