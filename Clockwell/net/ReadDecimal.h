#pragma once

#include <optional>
#include <string_view>

namespace clockwell {

/// What the C library's strtod reads in the "C" locale when it takes the whole text and the text does not
/// begin with white space or NUL; so also "inf" and "0x10". A number beyond the range of a double is
/// infinite, one too small for it is zero.
std::optional<double> readDecimal(std::string_view text);

} // namespace clockwell
