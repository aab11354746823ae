#pragma once

#include "server/attendance/AttendanceDays.h"
#include "server/attendance/WorkCalendar.h"

#include <optional>
#include <string>
#include <vector>

namespace clockwell::server {

/// One day of an employee's history: a day with punches, or one that counts without (absent, on leave).
struct HistoryDay
{
    std::string id; ///< of the stored row; "absent-" or "on-leave-" and the date for a day without
    std::string workDate;
    Assessment assessment;
    std::optional<AttendanceRow> row;
};

HistoryDay historyDay(const AttendanceRow &row, Day today);

/// The days from the first to the last that count, oldest first. Both the list of records and the summary of
/// a month are made from this, so that they always agree.
std::vector<HistoryDay> historyBetween(Connection &connection, const Employee &employee, const Office &office,
                                       Day first, Day last, Day today);

/// The days of a month that count, up to today.
std::vector<HistoryDay> historyOfMonth(Connection &connection, const Employee &employee, const Office &office,
                                       Month month, Day today);

MonthTotals totalsOf(const std::vector<HistoryDay> &days);

/// The first day that the list of records reaches back to: the current month and the twelve before it.
Day startOfHistory(Day today);

} // namespace clockwell::server
