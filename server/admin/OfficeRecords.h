#pragma once

#include "server/attendance/Offices.h"

#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace clockwell::server {

/// An office as administrators see one: all of its rules, and whose it is.
struct OfficeRecord
{
    Office office;
    std::string companyName;

    auto columns() { return std::tuple_cat(office.columns(), std::tie(companyName)); }
};

/// All offices by name.
std::vector<OfficeRecord> listOfficeRecords(Connection &connection);

/// The office with this name or identifier; throws as requireOfficeNamed does.
OfficeRecord requireOfficeRecord(Connection &connection, const std::string &name);

/// Label and text of each value, in the order in which they are shown.
std::vector<std::pair<std::string, std::string>> officeFacts(const OfficeRecord &record);

} // namespace clockwell::server
