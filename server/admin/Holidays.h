#pragma once

#include "server/admin/CommandParts.h"
#include "server/admin/OfficeLookup.h"
#include "server/attendance/CalendarDay.h"

#include <string>
#include <tuple>
#include <vector>

namespace clockwell::server {

/// A day on which an office is closed, as administrators see one.
struct HolidayEntry
{
    std::string officeId;
    std::string officeName;
    std::string companyName;
    std::string day; ///< "yyyy-MM-dd"
    std::string name;

    auto columns() { return std::tie(officeId, officeName, companyName, day, name); }
};

struct HolidayChange
{
    Outcome outcome;
    HolidayEntry entry;
};

/// All holidays by day and office.
std::vector<HolidayEntry> listHolidays(Connection &connection);

/// Closes the office on a day. Throws AdminError Refused when the day is a holiday of another name already.
HolidayChange declareHoliday(Connection &connection, const std::string &office, Day day,
                             const std::string &name);
/// Opens it again. Throws AdminError NotFound when the day is none of the office's holidays.
HolidayChange withdrawHoliday(Connection &connection, const std::string &office, Day day);

} // namespace clockwell::server
