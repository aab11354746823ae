#pragma once

#include "server/admin/CommandParts.h"
#include "server/attendance/CalendarDay.h"
#include "server/storage/Connection.h"

#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace clockwell::server {

/// Some days of leave, as administrators see them.
struct LeaveEntry
{
    std::string id;
    std::string email;
    std::string fullName;
    std::string firstDay; ///< "yyyy-MM-dd"
    std::string lastDay;  ///< included
    std::optional<std::string> reason;

    auto columns() { return std::tie(id, email, fullName, firstDay, lastDay, reason); }
};

struct LeaveWishes
{
    std::string email;
    Day firstDay;
    Day lastDay; ///< included
    std::optional<std::string> reason;
};

struct LeaveChange
{
    Outcome outcome;
    LeaveEntry entry;
};

/// All leave by first day and name.
std::vector<LeaveEntry> listLeave(Connection &connection);

// All are a part of the caller's transaction and throw AdminError when refused.

/// Throws Refused when the last day is before the first, or when the employee has leave on one of the days.
LeaveChange grantLeave(Connection &connection, const LeaveWishes &wishes);
/// Throws NotFound when there is no leave with this identifier.
LeaveChange withdrawLeave(Connection &connection, const std::string &id);
/// Throws NotFound when none of the employee's leave begins on this day.
LeaveChange withdrawLeave(Connection &connection, const std::string &email, Day firstDay);

} // namespace clockwell::server
