#include "server/attendance/Offices.h"

#include "server/http/ApiError.h"

#include <GeographicLib/Geodesic.hpp>

#include <stdexcept>

namespace clockwell::server {

TimeZone Office::timeZone() const
{
    auto zone = TimeZone::named(timeZoneName);
    if (!zone)
        throw std::runtime_error{"The time zone " + timeZoneName + " of office " + id +
                                 " is not known here."};
    return *zone;
}

double Office::distanceTo(double pointLatitude, double pointLongitude) const
{
    double meters = 0;
    GeographicLib::Geodesic::WGS84().Inverse(latitude, longitude, pointLatitude, pointLongitude, meters);
    return meters;
}

Office requireOffice(Connection &connection, const std::optional<std::string> &officeId)
{
    auto office = connection.first<Office>(
        "SELECT id, name, latitude, longitude, radius_meters, max_accuracy_meters, time_zone, "
        "check_in_minute,"
        " check_out_minute, grace_minutes, full_day_minutes, working_weekdays FROM offices WHERE id = :id",
        officeId);
    if (!office)
        throw ApiError{409, "NO_OFFICE", "No office is assigned to you yet. Please ask your administrator."};
    return *office;
}

std::map<Day, std::string> findHolidays(Connection &connection, const std::string &officeId, Day first,
                                        Day last)
{
    struct Holiday
    {
        std::string day;
        std::string name;
        auto columns() { return std::tie(day, name); }
    };
    std::map<Day, std::string> holidays;
    for (const Holiday &holiday : connection.all<Holiday>(
             "SELECT day, name FROM holidays WHERE office_id = :office AND day BETWEEN :first AND :last",
             officeId, toText(first), toText(last)))
        if (const auto day = parseDay(holiday.day))
            holidays.emplace(*day, holiday.name);
    return holidays;
}

} // namespace clockwell::server
