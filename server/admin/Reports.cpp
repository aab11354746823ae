#include "server/admin/Reports.h"

#include "server/admin/AdminError.h"
#include "server/admin/ClockTime.h"
#include "server/admin/Offices.h"
#include "server/attendance/History.h"
#include "server/storage/RowType.h"

#include <map>

namespace clockwell::server {

namespace {

const std::vector<std::string> summaryColumns{
    "month",    "office",           "fullName",   "email",     "accountStatus", "presentDays",
    "lateDays", "totalLateMinutes", "absentDays", "leaveDays", "halfDays",      "totalWorkingMinutes",
    "lastDay"};
const std::vector<std::string> dayColumns{
    "workDate", "office",      "timeZone",          "fullName",       "email",     "status",    "checkIn",
    "checkOut", "lateMinutes", "earlyLeaveMinutes", "workingMinutes", "checkInAt", "checkOutAt"};

template <class Value>
Json orNull(const std::optional<Value> &value)
{
    return value ? Json(*value) : Json(nullptr);
}

Json clockText(const std::optional<long long> &millis, const TimeZone &zone)
{
    return millis ? Json(wallClockText(zone, fromMillis(*millis))) : Json(nullptr);
}

Json instantText(const std::optional<long long> &millis)
{
    return millis ? Json(toIsoText(fromMillis(*millis))) : Json(nullptr);
}

std::vector<Json> dayRow(const Employee &employee, const Office &office, const TimeZone &zone,
                         const HistoryDay &day)
{
    const Assessment &found = day.assessment;
    const auto checkInAt = day.row ? std::optional{day.row->checkInAt} : std::nullopt;
    const auto checkOutAt = day.row ? day.row->checkOutAt : std::nullopt;
    return {day.workDate,
            office.name,
            office.timeZoneName,
            employee.fullName,
            employee.email,
            found.status,
            clockText(checkInAt, zone),
            clockText(checkOutAt, zone),
            orNull(found.lateMinutes),
            orNull(found.earlyLeaveMinutes),
            orNull(found.workingMinutes),
            instantText(checkInAt),
            instantText(checkOutAt)};
}

std::vector<Json> summaryRow(Month month, const Employee &employee, const Office &office,
                             const MonthTotals &totals)
{
    return {toText(month),           office.name,        employee.fullName, employee.email,
            employee.status,         totals.presentDays, totals.lateDays,   totals.totalLateMinutes,
            totals.absentDays,       totals.leaveDays,   totals.halfDays,   totals.totalWorkingMinutes,
            orNull(employee.lastDay)};
}

std::vector<Employee> employeesOf(Connection &connection, const ReportScope &scope)
{
    static const std::string sql = "SELECT " + columnsOf<Employee>("e") +
                                   " FROM employees e LEFT JOIN offices o ON o.id = e.office_id"
                                   " WHERE e.status IN ('APPROVED', 'SUSPENDED') AND e.joined_on <= :last"
                                   " AND (e.last_day IS NULL OR e.last_day >= :first)"
                                   " ORDER BY o.name, o.id, e.full_name, e.email_key";
    auto employees =
        connection.all<Employee>(sql, toText(lastDayOf(scope.month)), toText(firstDayOf(scope.month)));
    if (scope.office) {
        const std::string office = requireOfficeNamed(connection, *scope.office).office.id;
        std::erase_if(employees, [&](const Employee &employee) { return employee.officeId != office; });
    }
    return employees;
}

void requireBegun(Month month, Instant now)
{
    constexpr std::chrono::hours earliestZone{14}; // no place on earth is further ahead of UTC
    if (firstDayOf(month).time_since_epoch() > (now + earliestZone).time_since_epoch())
        throw refused("The month " + toText(month) + " has not begun yet.");
}

void addRows(ReportTable &table, Connection &connection, const ReportScope &scope, const Employee &employee,
             const Office &office, Instant now)
{
    const TimeZone zone = office.timeZone();
    const auto days = historyOfMonth(connection, employee, office, scope.month, zone.dayOf(now));
    if (!scope.days) {
        table.rows.push_back(summaryRow(scope.month, employee, office, totalsOf(days)));
        return;
    }
    for (const HistoryDay &day : days)
        table.rows.push_back(dayRow(employee, office, zone, day));
}

} // namespace

MonthReport reportOf(Connection &connection, const ReportScope &scope, Instant now)
{
    requireBegun(scope.month, now);
    MonthReport report{{scope.days ? dayColumns : summaryColumns, {}}, {}};
    std::map<std::string, Office> offices;
    for (const Employee &employee : employeesOf(connection, scope)) {
        if (!employee.officeId) {
            report.withoutOffice.push_back(employee.email);
            continue;
        }
        auto known = offices.find(*employee.officeId);
        if (known == offices.end())
            known = offices.emplace(*employee.officeId, requireOffice(connection, employee.officeId)).first;
        addRows(report.table, connection, scope, employee, known->second, now);
    }
    return report;
}

} // namespace clockwell::server
