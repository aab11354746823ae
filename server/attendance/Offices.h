#pragma once

#include "server/attendance/CalendarDay.h"
#include "server/attendance/Policy.h"
#include "server/attendance/TimeZone.h"
#include "server/storage/Connection.h"

#include <map>
#include <optional>
#include <string>
#include <tuple>

namespace clockwell::server {

/// One row of the table of offices.
struct Office
{
    std::string id;
    std::string name;
    double latitude = 0;
    double longitude = 0;
    long long radiusMeters = 0;
    long long maxAccuracyMeters = 0; ///< a fix less precise than this proves nothing
    std::string timeZoneName;
    OfficeHours hours;

    auto columns()
    {
        return std::tie(id, name, latitude, longitude, radiusMeters, maxAccuracyMeters, timeZoneName,
                        hours.checkInMinute, hours.checkOutMinute, hours.graceMinutes, hours.fullDayMinutes,
                        hours.workingWeekdays);
    }

    /// Throws std::runtime_error when the machine does not know the zone.
    TimeZone timeZone() const;
    /// Metres between the office and a point, both on the WGS 84 ellipsoid; degrees.
    double distanceTo(double pointLatitude, double pointLongitude) const;
};

/// The office of an employee. Throws ApiError 409 when none is assigned.
Office requireOffice(Connection &connection, const std::optional<std::string> &officeId);

/// The office's holidays from the first to the last day, with their names.
std::map<Day, std::string> findHolidays(Connection &connection, const std::string &officeId, Day first,
                                        Day last);

} // namespace clockwell::server
