#include "net/ReadDecimal.h"

#include <locale.h>

#include <charconv>
#include <cstdlib>
#include <string>

namespace clockwell {

// Uses strtod_l instead of strtod: the app sets the user's locale for its dates and numbers, and strtod would
// then expect that locale's decimal separator.
std::optional<double> readDecimal(std::string_view text)
{
    static const locale_t classic = newlocale(LC_ALL_MASK, "C", nullptr);
    constexpr std::string_view blanks(" \t\n\v\f\r\0", 7);
    if (text.empty() || blanks.find(text.front()) != std::string_view::npos)
        return std::nullopt;
    // from_chars is faster and gives the same value for every text that it accepts; a plus sign, hexadecimal
    // and overflow are left to strtod.
    double value = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), value);
    if (parsed.ec == std::errc() && parsed.ptr == text.data() + text.size())
        return value;
    const std::string terminated(text);
    char *end = nullptr;
    value = strtod_l(terminated.c_str(), &end, classic);
    if (end != terminated.c_str() + terminated.size())
        return std::nullopt;
    return value;
}

} // namespace clockwell
