#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace clockwell::server {

/// Reads a finite decimal number that is the whole text, e.g. "-12.5" or "1e3"; independent of the locale.
std::optional<double> parseNumber(std::string_view text);

/// The text with the digits of every script as ASCII digits.
std::string withAsciiDigits(std::string_view utf8);

/// The sentence for a number that is missing its range, e.g. "lat must be a number from -90 to 90."
std::string numberRule(std::string_view key, double smallest, double largest);

} // namespace clockwell::server
