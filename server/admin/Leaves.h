#pragma once

#include "server/admin/Outcome.h"
#include "server/attendance/CalendarDay.h"
#include "server/attendance/WorkCalendar.h"
#include "server/auth/Accounts.h"

#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace clockwell::server {

/// Some days of leave and the employee who has them.
struct EmployeeLeave
{
    Leave leave;
    Employee employee;

    auto columns() { return std::tuple_cat(leave.columns(), employee.columns()); }
};

/// Leave that is to be given.
struct LeaveGrant
{
    std::string email;
    Day firstDay;
    Day lastDay; ///< included
    std::optional<std::string> reason;
};

struct ChangedLeave
{
    Outcome outcome;
    EmployeeLeave leave;
};

/// All leave by first day and name.
std::vector<EmployeeLeave> listLeave(Connection &connection);

// All are a part of the caller's transaction and throw AdminError when refused.

/// Throws Refused when the last day is before the first, or when the employee has leave on one of the days.
ChangedLeave grantLeave(Connection &connection, const LeaveGrant &grant);
/// Throws NotFound when there is no leave with this identifier.
ChangedLeave withdrawLeave(Connection &connection, const std::string &id);
/// Throws NotFound when none of the employee's leave begins on this day.
ChangedLeave withdrawLeave(Connection &connection, const std::string &email, Day firstDay);

} // namespace clockwell::server
