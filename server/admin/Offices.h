#pragma once

#include "server/admin/Companies.h"
#include "server/admin/Outcome.h"
#include "server/attendance/Offices.h"

#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace clockwell::server {

/// An office and the company that it belongs to.
struct CompanyOffice
{
    Office office;
    Company company;

    auto columns() { return std::tuple_cat(office.columns(), company.columns()); }
};

/// All offices by name.
std::vector<CompanyOffice> listOffices(Connection &connection);

/// The office with this name (in any case of the letters A to Z) or identifier; names may stand twice, in two
/// companies. Throws AdminError: NotFound with the names there are, Refused when the name is not enough.
CompanyOffice requireOfficeNamed(Connection &connection, const std::string &name);

/// "A, B, C" for error texts; a text that says so when there are none.
std::string officeNames(const std::vector<CompanyOffice> &offices);

/// Label and text of each value, in the order in which they are shown.
std::vector<std::pair<std::string, std::string>> officeFacts(const CompanyOffice &office);

/// The values of an office that are to change; what is not given stays as it is. Each value is within the
/// schema's range.
struct OfficeChanges
{
    std::optional<std::string> name;
    std::optional<double> latitude;
    std::optional<double> longitude;
    std::optional<long long> radiusMeters;
    std::optional<long long> maxAccuracyMeters;
    std::optional<std::string> timeZoneName;
    std::optional<long long> checkInMinute;
    std::optional<long long> checkOutMinute;
    std::optional<long long> graceMinutes;
    std::optional<long long> fullDayMinutes;
    std::optional<long long> workingWeekdays;

    bool empty() const;
};

struct ChangedOffice
{
    Outcome outcome;
    std::optional<CompanyOffice> before; ///< nothing for a new office
    CompanyOffice after;
};

// Both are a part of the caller's transaction and throw AdminError when they are refused: a name that another
// office of the company has, a check-out that is not after the check-in.

/// An office of the company with this code; none is needed when there is only one company. Name, coordinates,
/// time zone and hours have to be given.
ChangedOffice addOffice(Connection &connection, const std::optional<std::string> &companyCode,
                        const OfficeChanges &values);
/// `name`: as it is called so far, or its identifier.
ChangedOffice editOffice(Connection &connection, const std::string &name, const OfficeChanges &changes);

} // namespace clockwell::server
