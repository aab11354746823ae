#include "server/http/NumberText.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace clockwell::server {

namespace {

std::string shortest(double value)
{
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    return {text.data(), end};
}

} // namespace

std::optional<double> parseNumber(std::string_view text)
{
    double value = 0;
    const char *const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc{} || result.ptr != end || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::string withAsciiDigits(std::string_view utf8)
{
    const auto text = icu::UnicodeString::fromUTF8({utf8.data(), static_cast<std::int32_t>(utf8.size())});
    icu::UnicodeString result;
    for (std::int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
        const auto digit = u_charDigitValue(text.char32At(i));
        result.append(digit < 0 ? text.char32At(i) : u'0' + digit);
    }
    std::string ascii;
    return result.toUTF8String(ascii);
}

std::string numberRule(std::string_view key, double smallest, double largest)
{
    std::string rule = std::string{key} + " must be a number ";
    if (largest >= std::numeric_limits<double>::max())
        return rule + "of at least " + shortest(smallest) + ".";
    return rule + "from " + shortest(smallest) + " to " + shortest(largest) + ".";
}

} // namespace clockwell::server
