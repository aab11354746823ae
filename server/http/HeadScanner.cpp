#include "HeadScanner.h"

#include "Utf8.h"

#include <algorithm>
#include <cctype>

namespace clockwell::server {

namespace {

/// A "token" of RFC 9110, section 5.6.2.
bool isToken(std::string_view text)
{
    constexpr std::string_view marks = "!#$%&'*+-.^_`|~";
    return !text.empty() && std::all_of(text.begin(), text.end(), [marks](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 || marks.find(c) != marks.npos;
    });
}

/// Every line after the request line is a field with a name directly before its colon. `head` ends in two
/// CRLFs.
bool fieldNamesAreClean(std::string_view head)
{
    head.remove_suffix(2);
    head.remove_prefix(head.find("\r\n") + 2);
    while (!head.empty()) {
        const std::string_view line = head.substr(0, head.find("\r\n"));
        head.remove_prefix(line.size() + 2);
        const std::size_t colon = line.find(':');
        if (colon == line.npos || !isToken(line.substr(0, colon)))
            return false;
    }
    return true;
}

} // namespace

bool HeadScanner::accepts(char c) const
{
    if ((m_last == '\r') != (c == '\n'))
        return false; // a CR or LF alone
    if (m_atStart && (c == ' ' || c == '\t'))
        return false; // a folded line, or white space before the request line
    return !isControl(c) || c == '\t' || c == '\r' || c == '\n';
}

bool HeadScanner::endsHeadAt(std::string_view input) const
{
    return m_position >= 4 && input.substr(m_position - 4, 4) == "\r\n\r\n";
}

HeadScanner::Result HeadScanner::scan(std::string_view input)
{
    while (m_position < input.size()) {
        const char c = input[m_position];
        if (!accepts(c))
            return Result::Malformed;
        m_atStart = c == '\n';
        m_last = c;
        ++m_position;
        if (c == '\n' && endsHeadAt(input))
            return fieldNamesAreClean(input.substr(0, m_position)) ? Result::Complete : Result::Malformed;
    }
    return Result::NeedMore;
}

} // namespace clockwell::server
