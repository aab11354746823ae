#include "server/auth/EmailAddress.h"

#include <algorithm>
#include <iterator>

namespace clockwell::server {

namespace {

constexpr std::size_t longestLocalPart = 64; // RFC 5321, section 4.5.3.1.1
constexpr std::size_t longestLabel = 63;     // RFC 1035, section 2.3.4

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
    return !text.empty() && text.size() <= longestLabel && text.front() != '-' && text.back() != '-' &&
           std::ranges::all_of(
               text, [](char c) { return isLetterOrDigit(c) || c == '-'; });
}

// The tab, and Zs of Unicode 15. No encoding of a character is part of another's.
constexpr std::string_view blanks[] = {"\t",     " ",      "\u00a0", "\u1680", "\u2000", "\u2001",
                                       "\u2002", "\u2003", "\u2004", "\u2005", "\u2006", "\u2007",
                                       "\u2008", "\u2009", "\u200a", "\u202f", "\u205f", "\u3000"};

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
    if (at > longestLocalPart || text.size() > longestEmail) // no @ is further away than any
        return false;
    const bool localPart = allBetweenDots(text.substr(0, at), isAtom);
    const bool domain = allBetweenDots(text.substr(at + 1), isLabel);
    return localPart && domain;
}

std::string mailboxOf(std::string_view emailKey)
{
    const auto at = emailKey.rfind('@');
    const auto tag = emailKey.find('+');
    if (at == std::string_view::npos || tag == 0 || tag > at)
        return std::string{emailKey};
    return std::string{emailKey.substr(0, tag)}.append(emailKey.substr(at));
}

std::string trimmed(std::string_view text)
{
    const auto atStart = [&](std::string_view blank) { return text.starts_with(blank); };
    const auto atEnd = [&](std::string_view blank) { return text.ends_with(blank); };
    for (auto found = std::ranges::find_if(blanks, atStart); found != std::end(blanks);
         found = std::ranges::find_if(blanks, atStart))
        text.remove_prefix(found->size());
    for (auto found = std::ranges::find_if(blanks, atEnd); found != std::end(blanks);
         found = std::ranges::find_if(blanks, atEnd))
        text.remove_suffix(found->size());
    return std::string{text};
}

} // namespace clockwell::server
