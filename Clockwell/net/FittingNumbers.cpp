#include "net/FittingNumbers.h"

#include "net/ReadDecimal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace clockwell {

namespace {

/// Removes the digits at the front of a text; false if there are none.
bool skipDigits(std::string_view &text)
{
    const std::size_t count = std::min(text.find_first_not_of("0123456789"), text.size());
    text.remove_prefix(count);
    return count > 0;
}

bool skipOneOf(std::string_view wanted, std::string_view &text)
{
    const bool found = !text.empty() && wanted.find(text.front()) != std::string_view::npos;
    text.remove_prefix(found);
    return found;
}

/// Whether the token is a number by JSON's grammar, which is stricter than the standard library's functions.
bool isNumber(std::string_view token)
{
    skipOneOf("-", token);
    if (!skipOneOf("0", token) && !skipDigits(token))
        return false;
    if (skipOneOf(".", token) && !skipDigits(token))
        return false;
    if (skipOneOf("eE", token)) {
        skipOneOf("+-", token);
        if (!skipDigits(token))
            return false;
    }
    return token.empty();
}

template <class Integer>
bool fits(std::string_view token)
{
    Integer value = 0;
    const char *const end = token.data() + token.size();
    const auto result = std::from_chars(token.data(), end, value);
    return result.ec == std::errc() && result.ptr == end;
}

void appendFitting(std::string &out, std::string_view token)
{
    if (!isNumber(token) || fits<std::int64_t>(token) || fits<std::uint64_t>(token)) {
        out += token;
        return;
    }
    const double value = readDecimal(token).value();
    if (!std::isfinite(value)) {
        out += "[[]]";
        return;
    }
    std::array<char, 32> text{};
    // Always with an exponent: without one, the text might again be an integer that is too big.
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::scientific).ptr;
    out.append(text.data(), end);
}

/// The length of the quoted string at the front, including both quotes.
std::size_t quotedLength(std::string_view json)
{
    std::size_t at = json.find_first_of("\"\\", 1);
    while (at < json.size() && json[at] == '\\')
        at = json.find_first_of("\"\\", at + 2);
    return std::min(at, json.size() - 1) + 1;
}

} // namespace

std::string fittingNumbers(std::string_view json)
{
    constexpr std::string_view separators = " \t\r\n,:[]{}";
    constexpr std::string_view terminators = " \t\r\n,:[]{}\"";
    std::string out;
    out.reserve(json.size() + json.size() / 4);
    while (!json.empty()) {
        std::size_t length = 0;
        if (json.front() == '"') {
            length = quotedLength(json);
            out += json.substr(0, length);
        } else if (separators.find(json.front()) != std::string_view::npos) {
            length = std::min(json.find_first_not_of(separators), json.size());
            out += json.substr(0, length);
        } else {
            length = std::min(json.find_first_of(terminators), json.size());
            appendFitting(out, json.substr(0, length));
        }
        json.remove_prefix(length);
    }
    return out;
}

} // namespace clockwell
