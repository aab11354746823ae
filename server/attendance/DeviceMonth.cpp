#include "server/attendance/DeviceMonth.h"

#include <unicode/calendar.h>

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>
#include <string>

namespace clockwell::server {

namespace {

// The calendars that are the usual ones of some region.
constexpr std::array calendarLocales{"@calendar=gregorian", "@calendar=buddhist", "@calendar=persian",
                                     "@calendar=islamic-umalqura"};

DayRange daysIn(const char *calendarLocale, Month month)
{
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<icu::Calendar> calendar{
        icu::Calendar::createInstance(icu::TimeZone::getGMT()->clone(), icu::Locale{calendarLocale}, error)};
    if (U_FAILURE(error))
        throw std::runtime_error{std::string{"no calendar: "} + u_errorName(error)};
    calendar->clear();
    calendar->set(static_cast<int>(month.year()), static_cast<int>(static_cast<unsigned>(month.month())) - 1,
                  1);
    const std::chrono::milliseconds midnight{static_cast<long long>(calendar->getTime(error))};
    const std::chrono::days length{calendar->getActualMaximum(UCAL_DATE, error)};
    if (U_FAILURE(error))
        throw std::runtime_error{std::string{"no days of a month: "} + u_errorName(error)};
    const Day first{std::chrono::floor<std::chrono::days>(midnight)};
    return {first, first + length - std::chrono::days{1}};
}

std::chrono::days distance(const DayRange &range, Day day)
{
    return std::max({range.first - day, day - range.last, std::chrono::days{0}});
}

} // namespace

std::optional<DayRange> daysOfDeviceMonth(Month asked, Day today)
{
    std::optional<DayRange> nearest;
    for (const char *locale : calendarLocales) {
        const DayRange days = daysIn(locale, asked);
        const auto limit = nearest ? distance(*nearest, today) : furthestMonth;
        if (distance(days, today) < limit)
            nearest = days;
    }
    return nearest;
}

} // namespace clockwell::server
