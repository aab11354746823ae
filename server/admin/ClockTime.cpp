#include "server/admin/ClockTime.h"

#include "server/admin/AdminError.h"
#include "server/admin/FieldTexts.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace clockwell::server {

namespace {

constexpr std::size_t timeLength = 5; // of HH:MM

/// "+02:00"
std::optional<std::chrono::minutes> parseOffset(std::string_view text)
{
    if (text.empty() || (text.front() != '+' && text.front() != '-'))
        return std::nullopt;
    const auto minutes = parseTimeOfDay(text.substr(1));
    if (!minutes)
        return std::nullopt;
    return std::chrono::minutes{text.front() == '-' ? -*minutes : *minutes};
}

std::chrono::minutes offsetIn(const TimeZone &zone, Instant instant)
{
    return std::chrono::floor<std::chrono::minutes>(zone.offsetAt(instant));
}

/// "02:30+01:00"
std::string withOffset(const TimeZone &zone, const ClockTime &time, Instant instant)
{
    const auto offset = offsetIn(zone, instant).count();
    return timeOfDayText(time.minute) + (offset < 0 ? "-" : "+") + timeOfDayText(std::abs(offset));
}

} // namespace

std::optional<ClockTime> parseClockTime(std::string_view text)
{
    const auto minute = parseTimeOfDay(text.substr(0, timeLength));
    if (!minute || *minute == 24 * 60)
        return std::nullopt;
    if (text.size() == timeLength)
        return ClockTime{*minute, std::nullopt};
    const auto offset = parseOffset(text.substr(timeLength));
    return offset ? std::optional{ClockTime{*minute, offset}} : std::nullopt;
}

Instant momentOf(const TimeZone &zone, Day day, const ClockTime &time)
{
    const auto moments = zone.showing(day, static_cast<int>(time.minute));
    const std::string when = timeOfDayText(time.minute) + " on " + toText(day) + " in " + zone.name();
    if (moments.empty())
        throw refused("There is no " + when + ": a clock change skips it.");
    if (!time.offset && moments.size() == 1)
        return moments.front();
    const auto found =
        std::ranges::find_if(moments, [&](Instant moment) { return time.offset == offsetIn(zone, moment); });
    if (found != moments.end())
        return *found;
    if (moments.size() == 1)
        throw refused("The offset from UTC is another one at " + when + "; pass " +
                      withOffset(zone, time, moments.front()) + ".");
    throw refused("The clock shows " + when + " twice. Pass " + withOffset(zone, time, moments.front()) +
                  " for the first time or " + withOffset(zone, time, moments.back()) + " for the second.");
}

std::string wallClockText(const TimeZone &zone, Instant instant)
{
    const auto seconds = std::chrono::floor<std::chrono::seconds>(zone.timeOfDay(instant)).count();
    std::array<char, 72> text{};
    const int length = std::snprintf(
        text.data(), text.size(), "%02lld:%02lld:%02lld", static_cast<long long>(seconds / 3600),
        static_cast<long long>(seconds / 60 % 60), static_cast<long long>(seconds % 60));
    return {text.data(), static_cast<std::size_t>(length)};
}

} // namespace clockwell::server
