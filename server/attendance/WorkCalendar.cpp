#include "server/attendance/WorkCalendar.h"

#include "server/storage/RowType.h"

#include <algorithm>

namespace clockwell::server {

namespace {

std::vector<std::pair<Day, Day>> findLeaves(Connection &connection, const std::string &employeeId, Day first,
                                            Day last)
{
    static const std::string sql = "SELECT " + columnsOf<Leave>("l") +
                                   " FROM leaves l WHERE l.employee_id = :employee"
                                   " AND l.last_day >= :first AND l.first_day <= :last";
    std::vector<std::pair<Day, Day>> leaves;
    for (const Leave &leave : connection.all<Leave>(sql, employeeId, toText(first), toText(last))) {
        const auto from = parseDay(leave.firstDay);
        const auto to = parseDay(leave.lastDay);
        if (from && to)
            leaves.emplace_back(*from, *to);
    }
    return leaves;
}

} // namespace

WorkCalendar::WorkCalendar(Connection &connection, const Employee &employee, const Office &office, Day first,
                           Day last)
    : m_officeName(office.name),
      m_hours(office.hours),
      m_joinedOn(parseDay(employee.joinedOn).value()),
      m_lastDay(employee.lastDay ? parseDay(*employee.lastDay) : std::nullopt),
      m_holidays(findHolidays(connection, office.id, first, last)),
      m_leaves(findLeaves(connection, employee.id, first, last))
{}

DayFacts WorkCalendar::factsOf(Day day) const
{
    const auto covers = [day](const auto &leave) { return leave.first <= day && day <= leave.second; };
    return {isWorkingWeekday(m_hours, day), m_holidays.contains(day), m_joinedOn <= day,
            std::ranges::any_of(m_leaves, covers), m_lastDay && *m_lastDay < day};
}

std::string WorkCalendar::closedBecause(Day day) const
{
    const DayFacts facts = factsOf(day);
    if (isOpen(facts))
        return {};
    if (!facts.joined)
        return "Your first working day is " + toText(m_joinedOn) + ".";
    if (facts.hasLeft)
        return "Your last working day was " + toText(*m_lastDay) + ".";
    if (facts.holiday)
        return m_officeName + " is closed today: " + m_holidays.at(day) + ".";
    return m_officeName + " is closed today.";
}

} // namespace clockwell::server
