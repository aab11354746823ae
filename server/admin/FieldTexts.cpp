#include "server/admin/FieldTexts.h"

#include "server/admin/Printable.h"
#include "server/auth/Accounts.h"
#include "server/auth/EmailAddress.h"
#include "server/http/NumberText.h"
#include "server/http/Utf8.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace clockwell::server {

namespace {

constexpr long long endOfDay = 24 * 60;
constexpr std::size_t daysOfWeek = weekdayNames.size();

std::optional<std::size_t> parseWeekday(std::string_view text)
{
    const std::string wanted = lowerAscii(trimmed(text));
    const auto found = std::find_if(weekdayNames.begin(), weekdayNames.end(),
                                    [&](const char *name) { return lowerAscii(name) == wanted; });
    if (found == weekdayNames.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - weekdayNames.begin());
}

/// "Mon" or "Mon-Fri"; 0 when it is neither.
long long weekdaysOf(std::string_view part)
{
    const auto dash = part.find('-');
    const auto first = parseWeekday(part.substr(0, dash));
    const auto last = dash == std::string_view::npos ? first : parseWeekday(part.substr(dash + 1));
    if (!first || !last)
        return 0;
    const std::size_t length = (*last + daysOfWeek - *first) % daysOfWeek + 1;
    long long days = 0;
    for (std::size_t i = 0; i < length; ++i)
        days |= 1LL << ((*first + i) % daysOfWeek);
    return days;
}

} // namespace

std::optional<long long> parseWhole(std::string_view text, long long smallest, long long largest)
{
    long long value = 0;
    const char *const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    const bool read = result.ec == std::errc{} && result.ptr == end && text.front() != '-';
    return read && value >= smallest && value <= largest ? std::optional{value} : std::nullopt;
}

std::optional<double> parseWithin(std::string_view text, double smallest, double largest)
{
    const auto value = parseNumber(text);
    return value && *value >= smallest && *value <= largest ? value : std::nullopt;
}

std::optional<long long> parseTimeOfDay(std::string_view text)
{
    if (text.size() != 5 || text[2] != ':')
        return std::nullopt;
    const auto hours = parseWhole(text.substr(0, 2), 0, 24);
    const auto minutes = parseWhole(text.substr(3), 0, 59);
    if (!hours || !minutes || *hours * 60 + *minutes > endOfDay)
        return std::nullopt;
    return *hours * 60 + *minutes;
}

std::optional<long long> parseWeekdays(std::string_view text)
{
    long long all = 0;
    for (bool more = true; more;) {
        const auto comma = text.find(',');
        const long long some = weekdaysOf(text.substr(0, comma));
        if (some == 0)
            return std::nullopt;
        all |= some;
        more = comma != std::string_view::npos;
        if (more)
            text.remove_prefix(comma + 1);
    }
    return all;
}

std::string weekdaysText(long long weekdays)
{
    const auto open = [weekdays](std::size_t day) {
        return day < daysOfWeek && ((weekdays >> day) & 1) != 0;
    };
    std::string text;
    for (std::size_t day = 0; day < daysOfWeek; ++day) {
        if (!open(day))
            continue;
        text += (text.empty() ? "" : ",") + std::string{weekdayNames.at(day)};
        std::size_t last = day;
        while (open(last + 1))
            ++last;
        if (last > day + 1) { // two days in a row are shorter to read as such
            text += "-" + std::string{weekdayNames.at(last)};
            day = last;
        }
    }
    return text.empty() ? "-" : text;
}

std::optional<std::string> parseLine(std::string_view text, std::size_t longest)
{
    std::string line = trimmed(text);
    if (line.empty() || printable(line) != line || characterCount(line) > longest)
        return std::nullopt;
    return line;
}

} // namespace clockwell::server
