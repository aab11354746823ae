#pragma once

#include "server/attendance/Offices.h"
#include "server/attendance/Policy.h"
#include "server/auth/Accounts.h"

#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace clockwell::server {

/// One row of the table of leaves: some days off, in a row.
struct Leave
{
    std::string id;
    std::string employeeId;
    std::string firstDay; ///< "yyyy-MM-dd"
    std::string lastDay;  ///< included
    std::optional<std::string> reason;

    static constexpr const char *columnNames = "id employee_id first_day last_day reason";
    auto columns() { return std::tie(id, employeeId, firstDay, lastDay, reason); }
};

/// An employee's calendar over a range of days: the office's weekdays and holidays, the employee's leave, the
/// days they joined and leave for good. Read from the database once, then asked day by day.
class WorkCalendar
{
public:
    WorkCalendar(Connection &connection, const Employee &employee, const Office &office, Day first, Day last);

    /// For a day within the range.
    DayFacts factsOf(Day day) const;
    /// Why attendance cannot be marked that day, as a sentence; empty on an open day.
    std::string closedBecause(Day day) const;

    Day joinedOn() const { return m_joinedOn; }
    std::optional<Day> lastDay() const { return m_lastDay; }

private:
    std::string m_officeName;
    OfficeHours m_hours;
    Day m_joinedOn;
    std::optional<Day> m_lastDay;
    std::map<Day, std::string> m_holidays;
    std::vector<std::pair<Day, Day>> m_leaves; // first and last day of each
};

} // namespace clockwell::server
