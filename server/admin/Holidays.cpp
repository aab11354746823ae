#include "server/admin/Holidays.h"

#include "server/admin/AdminError.h"
#include "server/admin/FieldTexts.h"

#include <optional>

namespace clockwell::server {

namespace {

std::string holidaySql(const std::string &rest)
{
    return "SELECT h.office_id, o.name, i.name, h.day, h.name FROM holidays h"
           " JOIN offices o ON o.id = h.office_id JOIN institutes i ON i.id = o.institute_id " +
           rest;
}

std::optional<HolidayEntry> findHoliday(Connection &connection, const OfficeEntry &office, Day day)
{
    static const std::string sql = holidaySql("WHERE h.office_id = :office AND h.day = :day");
    return connection.first<HolidayEntry>(sql, office.id, toText(day));
}

/// "2027-01-01 (Fri) for Head Office"
std::string whenAndWhere(const OfficeEntry &office, Day day)
{
    return toText(day) + " (" + weekdayNames.at(weekdayIndex(day)) + ") for " + printable(office.name);
}

} // namespace

std::vector<HolidayEntry> listHolidays(Connection &connection)
{
    static const std::string sql = holidaySql("ORDER BY h.day, o.name, i.name, o.id");
    return connection.all<HolidayEntry>(sql);
}

HolidayChange declareHoliday(Connection &connection, const std::string &officeName, Day day,
                             const std::string &name)
{
    const OfficeEntry office = requireOfficeNamed(connection, officeName);
    const std::string where = whenAndWhere(office, day);
    if (const auto known = findHoliday(connection, office, day)) {
        if (known->name != name)
            throw AdminError{AdminError::Kind::Refused, "There is the holiday " + printable(known->name) +
                                                            " on " + where + " already. Remove it first."};
        return {{false, "The holiday " + name + " on " + where + " is there already; nothing was changed."},
                *known};
    }
    const HolidayEntry entry{office.id, office.name, office.companyName, toText(day), name};
    connection.execute("INSERT INTO holidays (office_id, day, name) VALUES (:office, :day, :name)",
                       entry.officeId, entry.day, entry.name);
    return {{true, "Added the holiday " + name + " on " + where + "."}, entry};
}

HolidayChange withdrawHoliday(Connection &connection, const std::string &officeName, Day day)
{
    const OfficeEntry office = requireOfficeNamed(connection, officeName);
    const std::string where = whenAndWhere(office, day);
    const auto known = findHoliday(connection, office, day);
    if (!known)
        throw AdminError{AdminError::Kind::NotFound, "There is no holiday on " + where + "."};
    connection.execute("DELETE FROM holidays WHERE office_id = :office AND day = :day", office.id,
                       toText(day));
    return {{true, "Removed the holiday " + printable(known->name) + " on " + where + "."}, *known};
}

} // namespace clockwell::server
