#include "server/admin/Leaves.h"

#include "server/admin/AdminError.h"
#include "server/admin/Employees.h"
#include "server/admin/Printable.h"
#include "server/auth/Tokens.h"
#include "server/storage/RowType.h"

namespace clockwell::server {

namespace {

std::string leaveSql(const std::string &rest)
{
    return "SELECT " + columnsOf<Leave>("l") + ", " + columnsOf<Employee>("e") +
           " FROM leaves l JOIN employees e ON e.id = l.employee_id " + rest;
}

std::string periodText(const Leave &leave)
{
    return leave.firstDay == leave.lastDay ? "on " + leave.firstDay
                                           : "from " + leave.firstDay + " to " + leave.lastDay;
}

std::string lengthText(const LeaveGrant &grant)
{
    const auto days = (grant.lastDay - grant.firstDay).count() + 1;
    return std::to_string(days) + (days == 1 ? " day" : " days");
}

std::vector<EmployeeLeave> overlapping(Connection &connection, const Employee &employee,
                                       const LeaveGrant &grant)
{
    static const std::string sql = leaveSql("WHERE l.employee_id = :employee AND l.first_day <= :last"
                                            " AND l.last_day >= :first ORDER BY l.first_day");
    return connection.all<EmployeeLeave>(sql, employee.id, toText(grant.lastDay), toText(grant.firstDay));
}

bool isTheSame(const Leave &leave, const LeaveGrant &grant)
{
    return leave.firstDay == toText(grant.firstDay) && leave.lastDay == toText(grant.lastDay) &&
           leave.reason == grant.reason;
}

ChangedLeave withdraw(Connection &connection, const EmployeeLeave &found)
{
    connection.execute("DELETE FROM leaves WHERE id = :id", found.leave.id);
    return {
        {true, "Removed the leave of " + personText(found.employee) + " " + periodText(found.leave) + "."},
        found};
}

} // namespace

std::vector<EmployeeLeave> listLeave(Connection &connection)
{
    static const std::string sql = leaveSql("ORDER BY l.first_day, e.full_name, e.email_key");
    return connection.all<EmployeeLeave>(sql);
}

ChangedLeave grantLeave(Connection &connection, const LeaveGrant &grant)
{
    if (grant.lastDay < grant.firstDay)
        throw refused("The last day " + toText(grant.lastDay) + " is before the first day " +
                      toText(grant.firstDay) + ".");
    const Employee employee = requireEmployee(connection, grant.email).employee;
    const std::string who = personText(employee);
    const auto others = overlapping(connection, employee, grant);
    if (!others.empty() && isTheSame(others.front().leave, grant))
        return {{false, who + " has this leave already; nothing was changed."}, others.front()};
    if (!others.empty())
        throw refused(who + " has leave " + periodText(others.front().leave) + " already (" +
                      others.front().leave.id + ").");
    const Leave leave{newId(), employee.id, toText(grant.firstDay), toText(grant.lastDay), grant.reason};
    connection.execute("INSERT INTO leaves (id, employee_id, first_day, last_day, reason)"
                       " VALUES (:id, :employee, :first, :last, :reason)",
                       leave.id, leave.employeeId, leave.firstDay, leave.lastDay, leave.reason);
    return {{true, "Added leave of " + who + " " + periodText(leave) + ", " + lengthText(grant) + "."},
            {leave, employee}};
}

ChangedLeave withdrawLeave(Connection &connection, const std::string &id)
{
    static const std::string sql = leaveSql("WHERE l.id = :id");
    const auto leave = connection.first<EmployeeLeave>(sql, id);
    if (!leave)
        throw notFound("There is no leave \"" + printable(id) + "\"; `leave list` shows the identifiers.");
    return withdraw(connection, *leave);
}

ChangedLeave withdrawLeave(Connection &connection, const std::string &email, Day firstDay)
{
    static const std::string sql = leaveSql("WHERE l.employee_id = :employee AND l.first_day = :first");
    const Employee employee = requireEmployee(connection, email).employee;
    const auto leave = connection.first<EmployeeLeave>(sql, employee.id, toText(firstDay));
    if (!leave)
        throw notFound(personText(employee) + " has no leave that begins on " + toText(firstDay) +
                       "; `leave list` shows what there is.");
    return withdraw(connection, *leave);
}

} // namespace clockwell::server
