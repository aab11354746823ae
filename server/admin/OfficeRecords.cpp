#include "server/admin/OfficeRecords.h"

#include "server/admin/AdminJson.h"
#include "server/admin/FieldTexts.h"
#include "server/admin/OfficeLookup.h"

namespace clockwell::server {

namespace {

std::string recordSql(const std::string &rest)
{
    return "SELECT o.id, o.name, o.latitude, o.longitude, o.radius_meters, o.max_accuracy_meters, "
           "o.time_zone,"
           " o.check_in_minute, o.check_out_minute, o.grace_minutes, o.full_day_minutes, o.working_weekdays,"
           " i.name FROM offices o JOIN institutes i ON i.id = o.institute_id " +
           rest;
}

} // namespace

std::vector<OfficeRecord> listOfficeRecords(Connection &connection)
{
    static const std::string sql = recordSql("ORDER BY o.name, i.name, o.id");
    return connection.all<OfficeRecord>(sql);
}

OfficeRecord requireOfficeRecord(Connection &connection, const std::string &name)
{
    static const std::string sql = recordSql("WHERE o.id = :id");
    return connection.first<OfficeRecord>(sql, requireOfficeNamed(connection, name).id).value();
}

std::vector<std::pair<std::string, std::string>> officeFacts(const OfficeRecord &record)
{
    const Office &office = record.office;
    const OfficeHours &hours = office.hours;
    return {{"Name", office.name},
            {"Company", record.companyName},
            {"Latitude", Json(office.latitude).dump()},
            {"Longitude", Json(office.longitude).dump()},
            {"Radius", std::to_string(office.radiusMeters) + " m"},
            {"Accuracy needed", std::to_string(office.maxAccuracyMeters) + " m"},
            {"Time zone", office.timeZoneName},
            {"Check-in", timeOfDayText(hours.checkInMinute)},
            {"Check-out", timeOfDayText(hours.checkOutMinute)},
            {"Grace", std::to_string(hours.graceMinutes) + " min"},
            {"Full day", std::to_string(hours.fullDayMinutes) + " min"},
            {"Working days", weekdaysText(hours.workingWeekdays)}};
}

} // namespace clockwell::server
