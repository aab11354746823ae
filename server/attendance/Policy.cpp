#include "server/attendance/Policy.h"

#include <algorithm>
#include <string_view>

namespace clockwell::server {

namespace {

/// Whole minutes from one instant to the next, never negative (a machine's clock may be set back).
long long minutesBetween(Instant from, Instant to)
{
    return std::max<long long>(0, std::chrono::floor<std::chrono::minutes>(to - from).count());
}

} // namespace

Assessment assess(const WorkedDay &day, bool dayIsOver)
{
    Assessment result;
    const long long late = minutesBetween(day.scheduledStart, day.checkIn);
    result.lateMinutes = late > day.graceMinutes ? late : 0;
    if (day.checkOut) {
        result.workingMinutes = minutesBetween(day.checkIn, *day.checkOut);
        result.earlyLeaveMinutes = minutesBetween(*day.checkOut, day.scheduledEnd);
    }
    if (!day.checkOut && dayIsOver)
        result.status = "MISSING_CHECK_OUT";
    else if (day.checkOut && *result.workingMinutes < day.fullDayMinutes)
        result.status = "HALF_DAY";
    else
        result.status = *result.lateMinutes > 0 ? "LATE" : "ON_TIME";
    return result;
}

bool isWorkingWeekday(const OfficeHours &hours, Day day)
{
    return (hours.workingWeekdays >> weekdayIndex(day) & 1) != 0;
}

bool isOpen(const DayFacts &facts)
{
    return facts.workingWeekday && !facts.holiday && facts.joined && !facts.hasLeft;
}

std::optional<Assessment> assessWithoutPunches(const DayFacts &facts, Day day, Day today)
{
    Assessment result;
    if (!isOpen(facts) || day > today)
        return std::nullopt;
    if (facts.onLeave)
        result.status = "ON_LEAVE";
    else if (day < today)
        result.status = "ABSENT";
    else
        return std::nullopt;
    return result;
}

NextPunch nextPunch(bool open, const WorkedDay *today)
{
    if (today != nullptr)
        return today->checkOut ? NextPunch::Complete : NextPunch::CheckOut;
    return open ? NextPunch::CheckIn : NextPunch::Closed;
}

MonthTotals addUp(const std::vector<Assessment> &days)
{
    MonthTotals totals;
    for (const Assessment &day : days) {
        const long long late = day.lateMinutes.value_or(0);
        totals.presentDays += day.status != "ABSENT" && day.status != "ON_LEAVE" ? 1 : 0;
        totals.lateDays += late > 0 ? 1 : 0;
        totals.totalLateMinutes += late;
        totals.absentDays += day.status == "ABSENT" ? 1 : 0;
        totals.leaveDays += day.status == "ON_LEAVE" ? 1 : 0;
        totals.halfDays += day.status == "HALF_DAY" ? 1 : 0;
        totals.totalWorkingMinutes += day.workingMinutes.value_or(0);
    }
    return totals;
}

} // namespace clockwell::server
