#include "server/attendance/CalendarDay.h"

#include <array>
#include <cstdio>

namespace clockwell::server {

namespace {

std::optional<unsigned> parseDigits(std::string_view text)
{
    unsigned value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9')
            return std::nullopt;
        value = value * 10 + static_cast<unsigned>(c - '0');
    }
    return value;
}

std::string monthText(std::chrono::year year, std::chrono::month month)
{
    std::array<char, 16> text{};
    const int length = std::snprintf(text.data(), text.size(), "%04d-%02u", static_cast<int>(year),
                                     static_cast<unsigned>(month));
    return {text.data(), static_cast<std::size_t>(length)};
}

} // namespace

std::string toText(Day day)
{
    const std::chrono::year_month_day date{day};
    const auto number = static_cast<unsigned>(date.day());
    return monthText(date.year(), date.month()) + (number < 10 ? "-0" : "-") + std::to_string(number);
}

std::string toText(Month month)
{
    return monthText(month.year(), month.month());
}

std::optional<Month> parseMonth(std::string_view text)
{
    if (text.size() != 7 || text[4] != '-')
        return std::nullopt;
    const auto year = parseDigits(text.substr(0, 4));
    const auto month = parseDigits(text.substr(5, 2));
    if (!year || !month || *year == 0)
        return std::nullopt;
    const Month result{std::chrono::year{static_cast<int>(*year)}, std::chrono::month{*month}};
    return result.ok() ? std::optional{result} : std::nullopt;
}

std::optional<Day> parseDay(std::string_view text)
{
    if (text.size() != 10 || text[7] != '-')
        return std::nullopt;
    const auto month = parseMonth(text.substr(0, 7));
    const auto number = parseDigits(text.substr(8, 2));
    if (!month || !number)
        return std::nullopt;
    const auto date = *month / std::chrono::day{*number};
    return date.ok() ? std::optional{Day{date}} : std::nullopt;
}

Month monthOf(Day day)
{
    const std::chrono::year_month_day date{day};
    return date.year() / date.month();
}

Day firstDayOf(Month month)
{
    return Day{month / std::chrono::day{1}};
}

Day lastDayOf(Month month)
{
    return Day{month / std::chrono::last};
}

std::string timeOfDayText(long long minute)
{
    std::array<char, 48> text{};
    const int length = std::snprintf(text.data(), text.size(), "%02lld:%02lld", minute / 60, minute % 60);
    return {text.data(), static_cast<std::size_t>(length)};
}

unsigned weekdayIndex(Day day)
{
    return std::chrono::weekday{day}.iso_encoding() - 1;
}

} // namespace clockwell::server
