#include "server/attendance/Offices.h"

#include "server/http/ApiError.h"
#include "server/storage/RowType.h"

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
    static const std::string sql = "SELECT " + columnsOf<Office>("o") + " FROM offices o WHERE o.id = :id";
    auto office = connection.first<Office>(sql, officeId);
    if (!office)
        throw ApiError{409, "NO_OFFICE", "No office is assigned to you yet. Please ask your administrator."};
    return *office;
}

std::map<Day, std::string> findHolidays(Connection &connection, const std::string &officeId, Day first,
                                        Day last)
{
    static const std::string sql = "SELECT " + columnsOf<Holiday>("h") +
                                   " FROM holidays h WHERE h.office_id = :office"
                                   " AND h.day BETWEEN :first AND :last";
    std::map<Day, std::string> holidays;
    for (const Holiday &holiday : connection.all<Holiday>(sql, officeId, toText(first), toText(last)))
        if (const auto day = parseDay(holiday.day))
            holidays.emplace(*day, holiday.name);
    return holidays;
}

} // namespace clockwell::server
