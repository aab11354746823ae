#pragma once

#include "server/storage/Connection.h"

#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace clockwell::server {

/// What commands need to know of an office that is named to them.
struct OfficeEntry
{
    std::string id;
    std::string name;
    std::string instituteId;
    std::string companyName;
    std::string timeZoneName;

    auto columns() { return std::tie(id, name, instituteId, companyName, timeZoneName); }
};

/// All offices by name.
std::vector<OfficeEntry> listOffices(Connection &connection);

/// The office with this name (in any case of the letters A to Z) or identifier; names may stand twice, in two
/// companies. Throws AdminError: NotFound with the names there are, Refused when the name is not enough.
OfficeEntry requireOfficeNamed(Connection &connection, const std::string &name);

/// "A, B, C" for error texts; a text that says so when there are none.
std::string officeNames(const std::vector<OfficeEntry> &offices);

} // namespace clockwell::server
