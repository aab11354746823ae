#include "server/EmailAddress.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>

namespace clockwell::server {

namespace {

constexpr std::size_t LongestLocalPart = 64; // RFC 5321, section 4.5.3.1.1
constexpr std::size_t LongestLabel = 63;     // RFC 1035, section 2.3.4

bool isLetterOrDigit(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

/// atext of RFC 5322, section 3.2.3
bool isAtext(char c)
{
    return isLetterOrDigit(c) ||
           (c != '\0' && std::string_view{"!#$%&'*+-/=?^_`{|}~"}.find(c) != std::string_view::npos);
}

bool isAtom(std::string_view text)
{
    return !text.empty() && std::ranges::all_of(text, isAtext);
}

bool isLabel(std::string_view text)
{
    return !text.empty() && text.size() <= LongestLabel && text.front() != '-' && text.back() != '-' &&
           std::ranges::all_of(text, [](char c) { return isLetterOrDigit(c) || c == '-'; });
}

bool isBlank(UChar32 c)
{
    return c == '\t' || u_charType(c) == U_SPACE_SEPARATOR;
}

template <class Rule>
bool allBetweenDots(std::string_view text, Rule rule)
{
    for (auto dot = text.find('.'); dot != std::string_view::npos; dot = text.find('.')) {
        if (!rule(text.substr(0, dot)))
            return false;
        text.remove_prefix(dot + 1);
    }
    return rule(text);
}

} // namespace

bool isEmailAddress(std::string_view text)
{
    const auto at = text.rfind('@');
    if (at > LongestLocalPart || text.size() > LongestEmail) // no @ is further away than any
        return false;
    const bool localPart = allBetweenDots(text.substr(0, at), isAtom);
    const bool domain = allBetweenDots(text.substr(at + 1), isLabel);
    return localPart && domain;
}

std::string trimmed(std::string_view text)
{
    const auto all = icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
    std::int32_t begin = 0;
    std::int32_t end = all.length();
    while (begin < end && isBlank(all.charAt(begin))) // they are all in the basic plane
        ++begin;
    while (end > begin && isBlank(all.charAt(end - 1)))
        --end;
    std::string result;
    return all.tempSubStringBetween(begin, end).toUTF8String(result);
}

} // namespace clockwell::server
