#pragma once

#include "server/admin/Offices.h"

#include <string>
#include <tuple>
#include <vector>

namespace clockwell::server {

/// A holiday and the office that is closed then.
struct OfficeHoliday
{
    Holiday holiday;
    Office office;
    Company company;

    auto columns() { return std::tuple_cat(holiday.columns(), office.columns(), company.columns()); }
};

struct ChangedHoliday
{
    Outcome outcome;
    OfficeHoliday holiday;
};

/// All holidays by day and office.
std::vector<OfficeHoliday> listHolidays(Connection &connection);

/// Closes the office on a day. Throws AdminError Refused when the day is a holiday of another name already.
ChangedHoliday declareHoliday(Connection &connection, const std::string &officeName, Day day,
                              const std::string &name);
/// Opens it again. Throws AdminError NotFound when the day is none of the office's holidays.
ChangedHoliday withdrawHoliday(Connection &connection, const std::string &officeName, Day day);

} // namespace clockwell::server
