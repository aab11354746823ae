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
    std::string companyId;
    std::string name;
    double latitude = 0;
    double longitude = 0;
    long long radiusMeters = 0;
    long long maxAccuracyMeters = 0; ///< a fix less precise than this proves nothing
    std::string timeZoneName;
    OfficeHours hours;

    static constexpr const char *columnNames =
        "id company_id name latitude longitude radius_meters max_accuracy_meters time_zone check_in_minute"
        " check_out_minute grace_minutes full_day_minutes working_weekdays";
    auto columns()
    {
        return std::tie(id, companyId, name, latitude, longitude, radiusMeters, maxAccuracyMeters,
                        timeZoneName, hours.checkInMinute, hours.checkOutMinute, hours.graceMinutes,
                        hours.fullDayMinutes, hours.workingWeekdays);
    }

    /// Throws std::runtime_error when the machine does not know the zone.
    TimeZone timeZone() const;
    /// Metres between the office and a point, both on the WGS 84 ellipsoid; degrees.
    double distanceTo(double pointLatitude, double pointLongitude) const;
};

/// One row of the table of holidays: a day on which an office is closed.
struct Holiday
{
    std::string officeId;
    std::string day; ///< "yyyy-MM-dd"
    std::string name;

    static constexpr const char *columnNames = "office_id day name";
    auto columns() { return std::tie(officeId, day, name); }
};

/// The office of an employee. Throws ApiError 409 when none is assigned.
Office requireOffice(Connection &connection, const std::optional<std::string> &officeId);

/// The office's holidays from the first to the last day, with their names.
std::map<Day, std::string> findHolidays(Connection &connection, const std::string &officeId, Day first,
                                        Day last);

} // namespace clockwell::server
