#include "server/admin/Holidays.h"

#include "server/admin/AdminError.h"
#include "server/admin/FieldTexts.h"
#include "server/admin/Printable.h"
#include "server/storage/RowType.h"

#include <optional>

namespace clockwell::server {

namespace {

std::string holidaySql(const std::string &rest)
{
    return "SELECT " + columnsOf<Holiday>("h") + ", " + columnsOf<Office>("o") + ", " +
           columnsOf<Company>("c") +
           " FROM holidays h JOIN offices o ON o.id = h.office_id JOIN companies c ON c.id = o.company_id " +
           rest;
}

std::optional<OfficeHoliday> findHoliday(Connection &connection, const Office &office, Day day)
{
    static const std::string sql = holidaySql("WHERE h.office_id = :office AND h.day = :day");
    return connection.first<OfficeHoliday>(sql, office.id, toText(day));
}

/// "2027-01-01 (Fri) for Head Office"
std::string whenAndWhere(const Office &office, Day day)
{
    return toText(day) + " (" + weekdayNames.at(weekdayIndex(day)) + ") for " + printable(office.name);
}

} // namespace

std::vector<OfficeHoliday> listHolidays(Connection &connection)
{
    static const std::string sql = holidaySql("ORDER BY h.day, o.name, c.name, o.id");
    return connection.all<OfficeHoliday>(sql);
}

ChangedHoliday declareHoliday(Connection &connection, const std::string &officeName, Day day,
                              const std::string &name)
{
    const auto [office, company] = requireOfficeNamed(connection, officeName);
    const std::string where = whenAndWhere(office, day);
    if (const auto known = findHoliday(connection, office, day)) {
        if (known->holiday.name != name)
            throw refused("There is the holiday " + printable(known->holiday.name) + " on " + where +
                          " already. Remove it first.");
        return {{false, "The holiday " + name + " on " + where + " is there already; nothing was changed."},
                *known};
    }
    const Holiday holiday{office.id, toText(day), name};
    connection.execute("INSERT INTO holidays (office_id, day, name) VALUES (:office, :day, :name)",
                       holiday.officeId, holiday.day, holiday.name);
    return {{true, "Added the holiday " + name + " on " + where + "."}, {holiday, office, company}};
}

ChangedHoliday withdrawHoliday(Connection &connection, const std::string &officeName, Day day)
{
    const Office office = requireOfficeNamed(connection, officeName).office;
    const std::string where = whenAndWhere(office, day);
    const auto known = findHoliday(connection, office, day);
    if (!known)
        throw notFound("There is no holiday on " + where + ".");
    connection.execute("DELETE FROM holidays WHERE office_id = :office AND day = :day", office.id,
                       toText(day));
    return {{true, "Removed the holiday " + printable(known->holiday.name) + " on " + where + "."}, *known};
}

} // namespace clockwell::server
