#include "server/admin/Leaves.h"

#include "server/admin/AdminError.h"
#include "server/admin/EmployeeLookup.h"
#include "server/auth/Tokens.h"

namespace clockwell::server {

namespace {

std::string leaveSql(const std::string &rest)
{
    return "SELECT l.id, e.email, e.full_name, l.first_day, l.last_day, l.reason FROM leaves l"
           " JOIN employees e ON e.id = l.employee_id " +
           rest;
}

std::string periodText(const LeaveEntry &leave)
{
    return leave.firstDay == leave.lastDay ? "on " + leave.firstDay
                                           : "from " + leave.firstDay + " to " + leave.lastDay;
}

std::string lengthText(const LeaveWishes &wishes)
{
    const auto days = (wishes.lastDay - wishes.firstDay).count() + 1;
    return std::to_string(days) + (days == 1 ? " day" : " days");
}

std::vector<LeaveEntry> overlapping(Connection &connection, const EmployeeEntry &employee,
                                    const LeaveWishes &wishes)
{
    static const std::string sql = leaveSql("WHERE l.employee_id = :employee AND l.first_day <= :last"
                                            " AND l.last_day >= :first ORDER BY l.first_day");
    return connection.all<LeaveEntry>(sql, employee.id, toText(wishes.lastDay), toText(wishes.firstDay));
}

bool isAsWished(const LeaveEntry &leave, const LeaveWishes &wishes)
{
    return leave.firstDay == toText(wishes.firstDay) && leave.lastDay == toText(wishes.lastDay) &&
           leave.reason == wishes.reason;
}

LeaveChange withdraw(Connection &connection, const LeaveEntry &leave)
{
    connection.execute("DELETE FROM leaves WHERE id = :id", leave.id);
    return {{true, "Removed the leave of " + personText(leave.email, leave.fullName) + " " +
                       periodText(leave) + "."},
            leave};
}

} // namespace

std::vector<LeaveEntry> listLeave(Connection &connection)
{
    static const std::string sql = leaveSql("ORDER BY l.first_day, e.full_name, e.email_key");
    return connection.all<LeaveEntry>(sql);
}

LeaveChange grantLeave(Connection &connection, const LeaveWishes &wishes)
{
    if (wishes.lastDay < wishes.firstDay)
        throw AdminError{AdminError::Kind::Refused, "The last day " + toText(wishes.lastDay) +
                                                        " is before the first day " +
                                                        toText(wishes.firstDay) + "."};
    const EmployeeEntry employee = requireEmployee(connection, wishes.email);
    const std::string who = personText(employee);
    const auto others = overlapping(connection, employee, wishes);
    if (!others.empty() && isAsWished(others.front(), wishes))
        return {{false, who + " has this leave already; nothing was changed."}, others.front()};
    if (!others.empty())
        throw AdminError{AdminError::Kind::Refused, who + " has leave " + periodText(others.front()) +
                                                        " already (" + others.front().id + ")."};
    const LeaveEntry leave{
        newId(),      employee.email, employee.fullName, toText(wishes.firstDay), toText(wishes.lastDay),
        wishes.reason};
    connection.execute("INSERT INTO leaves (id, employee_id, first_day, last_day, reason)"
                       " VALUES (:id, :employee, :first, :last, :reason)",
                       leave.id, employee.id, leave.firstDay, leave.lastDay, leave.reason);
    return {{true, "Added leave of " + who + " " + periodText(leave) + ", " + lengthText(wishes) + "."},
            leave};
}

LeaveChange withdrawLeave(Connection &connection, const std::string &id)
{
    static const std::string sql = leaveSql("WHERE l.id = :id");
    const auto leave = connection.first<LeaveEntry>(sql, id);
    if (!leave)
        throw AdminError{AdminError::Kind::NotFound,
                         "There is no leave \"" + printable(id) + "\"; `leave list` shows the identifiers."};
    return withdraw(connection, *leave);
}

LeaveChange withdrawLeave(Connection &connection, const std::string &email, Day firstDay)
{
    static const std::string sql = leaveSql("WHERE l.employee_id = :employee AND l.first_day = :first");
    const EmployeeEntry employee = requireEmployee(connection, email);
    const auto leave = connection.first<LeaveEntry>(sql, employee.id, toText(firstDay));
    if (!leave)
        throw AdminError{AdminError::Kind::NotFound, personText(employee) + " has no leave that begins on " +
                                                         toText(firstDay) +
                                                         "; `leave list` shows what there is."};
    return withdraw(connection, *leave);
}

} // namespace clockwell::server
