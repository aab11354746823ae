#pragma once

#include "server/attendance/CalendarDay.h"
#include "server/storage/Instant.h"

#include <optional>
#include <string>
#include <vector>

/// Every rule about working days is here, as functions without side effects; docs/server.md says them in
/// words.
namespace clockwell::server {

/// An office's schedule. Times of day are minutes from midnight on its wall clock.
struct OfficeHours
{
    long long checkInMinute = 0;
    long long checkOutMinute = 0;
    long long graceMinutes = 0;    ///< this late still counts as on time
    long long fullDayMinutes = 0;  ///< whoever works less than this has a half day
    long long workingWeekdays = 0; ///< bit 0 is Monday, bit 6 is Sunday
};

/// A day on which the employee came: its punches, and the schedule that was in force when they checked in.
struct WorkedDay
{
    Instant scheduledStart;
    Instant scheduledEnd;
    long long graceMinutes = 0;
    long long fullDayMinutes = 0;
    Instant checkIn;
    std::optional<Instant> checkOut;
};

/// What the rules make of a day. A day without punches has only a status.
struct Assessment
{
    std::string status; ///< ON_TIME, LATE, HALF_DAY, MISSING_CHECK_OUT, ABSENT or ON_LEAVE
    std::optional<long long> lateMinutes;
    std::optional<long long> workingMinutes;
    std::optional<long long> earlyLeaveMinutes;
};

/// `dayIsOver`: the office's calendar shows a later date than the day's.
Assessment assess(const WorkedDay &day, bool dayIsOver);

/// What is known about a calendar day besides punches.
struct DayFacts
{
    bool workingWeekday = false;
    bool holiday = false;
    bool joined = false; ///< the employee had joined by then
    bool onLeave = false;
    bool hasLeft = false; ///< the employee's last day was before
};

bool isWorkingWeekday(const OfficeHours &hours, Day day);

/// Attendance can be marked on such a day.
bool isOpen(const DayFacts &facts);

/// A day without punches: ON_LEAVE, ABSENT, or nothing when it does not count. Today is not absent before it
/// is over; the future does not count.
std::optional<Assessment> assessWithoutPunches(const DayFacts &facts, Day day, Day today);

enum class NextPunch { CheckIn, CheckOut, Closed, Complete };

/// Which punch is due. `today`: today's record, when there is one.
NextPunch nextPunch(bool open, const WorkedDay *today);

/// The month's totals, each the sum over the days' assessments.
struct MonthTotals
{
    long long presentDays = 0; ///< days with a check-in, whatever their status
    long long lateDays = 0;    ///< those of them with late minutes
    long long totalLateMinutes = 0;
    long long absentDays = 0;
    long long leaveDays = 0;
    long long halfDays = 0;
    long long totalWorkingMinutes = 0;
};

MonthTotals addUp(const std::vector<Assessment> &days);

} // namespace clockwell::server
