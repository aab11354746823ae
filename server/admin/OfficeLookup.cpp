#include "server/admin/OfficeLookup.h"

#include "server/admin/AdminError.h"
#include "server/admin/Table.h"
#include "server/auth/Accounts.h"

#include <algorithm>
#include <iterator>

namespace clockwell::server {

std::vector<OfficeEntry> listOffices(Connection &connection)
{
    return connection.all<OfficeEntry>(
        "SELECT o.id, o.name, o.institute_id, i.name, o.time_zone FROM offices o"
        " JOIN institutes i ON i.id = o.institute_id ORDER BY o.name, i.name, o.id");
}

OfficeEntry requireOfficeNamed(Connection &connection, const std::string &name)
{
    const auto offices = listOffices(connection);
    std::vector<OfficeEntry> found;
    std::copy_if(offices.begin(), offices.end(), std::back_inserter(found), [&](const OfficeEntry &office) {
        return office.id == name || lowerAscii(office.name) == lowerAscii(name);
    });
    if (found.empty())
        throw AdminError{AdminError::Kind::NotFound, "There is no office \"" + printable(name) +
                                                         "\". Offices: " + officeNames(offices) + "."};
    if (found.size() == 1)
        return found.front();
    std::string choices;
    for (const OfficeEntry &office : found)
        choices += "\n  " + office.id + "  " + printable(office.companyName);
    throw AdminError{AdminError::Kind::Refused, "Several offices are called \"" + printable(name) +
                                                    "\". Pass the identifier of one:" + choices};
}

std::string officeNames(const std::vector<OfficeEntry> &offices)
{
    std::string names;
    for (const OfficeEntry &office : offices)
        names += (names.empty() ? "" : ", ") + printable(office.name);
    return names.empty() ? "none yet" : names;
}

} // namespace clockwell::server
