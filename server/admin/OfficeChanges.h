#pragma once

#include "server/admin/CommandParts.h"
#include "server/admin/OfficeRecords.h"

#include <optional>
#include <string>

namespace clockwell::server {

/// What an office is to be like; what is not given stays as it is. Each value is within the schema's range.
struct OfficeWishes
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

struct OfficeChange
{
    Outcome outcome;
    std::optional<OfficeRecord> before; ///< nothing for a new office
    OfficeRecord record;                ///< as it is now
};

// Both are a part of the caller's transaction and throw AdminError when they are refused: a name that another
// office of the company has, a check-out that is not after the check-in.

/// An office of the company with this code; none is needed when there is only one company. Name, coordinates,
/// time zone and hours have to be given.
OfficeChange addOffice(Connection &connection, const std::optional<std::string> &companyCode,
                       const OfficeWishes &wishes);
/// `name`: as it is called so far, or its identifier.
OfficeChange editOffice(Connection &connection, const std::string &name, const OfficeWishes &wishes);

} // namespace clockwell::server
