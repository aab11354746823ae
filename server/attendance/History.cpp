#include "server/attendance/History.h"

#include <algorithm>
#include <iterator>

namespace clockwell::server {

namespace {

HistoryDay dayWithoutPunches(Day day, const Assessment &assessment)
{
    const char *const prefix = assessment.status == "ABSENT" ? "absent-" : "on-leave-";
    return {prefix + toText(day), toText(day), assessment, std::nullopt};
}

} // namespace

HistoryDay historyDay(const AttendanceRow &row, Day today)
{
    return {row.id, row.workDate, assess(row.worked(), row.workDate < toText(today)), row};
}

std::vector<HistoryDay> historyBetween(Connection &connection, const Employee &employee, const Office &office,
                                       Day first, Day last, Day today)
{
    const Day end = std::min(last, today);
    const WorkCalendar calendar{connection, employee, office, first, end};
    const auto rows = findAttendance(connection, employee.id, first, end);
    std::vector<HistoryDay> days;
    auto row = rows.begin();
    for (Day day = first; day <= end; day += std::chrono::days{1}) {
        if (row != rows.end() && row->workDate == toText(day)) {
            days.push_back(historyDay(*row, today));
            ++row;
        } else if (const auto assessment = assessWithoutPunches(calendar.factsOf(day), day, today)) {
            days.push_back(dayWithoutPunches(day, *assessment));
        }
    }
    return days;
}

std::vector<HistoryDay> historyOfMonth(Connection &connection, const Employee &employee, const Office &office,
                                       Month month, Day today)
{
    return historyBetween(connection, employee, office, firstDayOf(month), lastDayOf(month), today);
}

MonthTotals totalsOf(const std::vector<HistoryDay> &days)
{
    std::vector<Assessment> assessments;
    std::ranges::transform(days, std::back_inserter(assessments), &HistoryDay::assessment);
    return addUp(assessments);
}

Day startOfHistory(Day today)
{
    return firstDayOf(monthOf(today) - std::chrono::months{12});
}

} // namespace clockwell::server
