#include "net/ReadDecimal.h"

#include <locale.h>

#include <charconv>
#include <cstdlib>
#include <string>

namespace clockwell {

// Not the plain strtod: the app sets the user's locale for its dates and numbers, and that function would
// then take a decimal comma.
std::optional<double> readDecimal(std::string_view text)
{
    static const locale_t classic = newlocale(LC_ALL_MASK, "C", nullptr);
    constexpr std::string_view blanks(" \t\n\v\f\r\0", 7);
    if (text.empty() || blanks.find(text.front()) != std::string_view::npos)
        return std::nullopt;
    // Faster and of the same mind about all it accepts; a plus sign, hexadecimal and overflow are left to
    // strtod.
    double value = 0;
    const auto quick = std::from_chars(text.data(), text.data() + text.size(), value);
    if (quick.ec == std::errc() && quick.ptr == text.data() + text.size())
        return value;
    const std::string terminated(text);
    char *end = nullptr;
    value = strtod_l(terminated.c_str(), &end, classic);
    if (end != terminated.c_str() + terminated.size())
        return std::nullopt;
    return value;
}

} // namespace clockwell
