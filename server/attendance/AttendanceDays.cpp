#include "server/attendance/AttendanceDays.h"

#include "server/auth/Tokens.h"
#include "server/storage/RowType.h"

namespace clockwell::server {

namespace {

std::string daysSql(const std::string &rest)
{
    return "SELECT " + columnsOf<AttendanceRow>("a") +
           " FROM attendance a WHERE a.employee_id = :employee AND " + rest;
}

} // namespace

WorkedDay AttendanceRow::worked() const
{
    return {fromMillis(scheduledStartAt),
            fromMillis(scheduledEndAt),
            graceMinutes,
            fullDayMinutes,
            fromMillis(checkInAt),
            checkOutAt ? std::optional{fromMillis(*checkOutAt)} : std::nullopt};
}

std::optional<AttendanceRow> findAttendanceOn(Connection &connection, const std::string &employeeId, Day day)
{
    static const std::string sql = daysSql("a.check_in_at IS NOT NULL AND a.work_date = :day");
    return connection.first<AttendanceRow>(sql, employeeId, toText(day));
}

std::vector<AttendanceRow> findAttendance(Connection &connection, const std::string &employeeId, Day first,
                                          Day last)
{
    static const std::string sql =
        daysSql("a.check_in_at IS NOT NULL AND a.work_date BETWEEN :first AND :last ORDER BY a.work_date");
    return connection.all<AttendanceRow>(sql, employeeId, toText(first), toText(last));
}

std::optional<AttendanceRow> findVoidedAttendance(Connection &connection, const std::string &employeeId,
                                                  Day day)
{
    static const std::string sql = daysSql("a.check_in_at IS NULL AND a.work_date = :day");
    return connection.first<AttendanceRow>(sql, employeeId, toText(day));
}

AttendanceRow newAttendance(const OfficeHours &hours, const TimeZone &zone, Day day)
{
    AttendanceRow row;
    row.id = newId();
    row.workDate = toText(day);
    row.scheduledStartAt = toMillis(zone.at(day, static_cast<int>(hours.checkInMinute)));
    row.scheduledEndAt = toMillis(zone.at(day, static_cast<int>(hours.checkOutMinute)));
    row.graceMinutes = hours.graceMinutes;
    row.fullDayMinutes = hours.fullDayMinutes;
    return row;
}

std::string storeAttendance(Connection &connection, const std::string &employeeId, const AttendanceRow &row)
{
    const long long added = connection.execute(
        "INSERT INTO attendance (id, employee_id, work_date, scheduled_start_at, scheduled_end_at,"
        " grace_minutes, full_day_minutes, check_in_at, check_in_distance, check_out_at, check_out_distance)"
        " VALUES (:id, :employee, :date, :start, :end, :grace, :full, :in, :inDistance, :out, :outDistance)"
        " ON CONFLICT (employee_id, work_date) DO NOTHING",
        row.id, employeeId, row.workDate, row.scheduledStartAt, row.scheduledEndAt, row.graceMinutes,
        row.fullDayMinutes, row.checkInAt, row.checkInDistance, row.checkOutAt, row.checkOutDistance);
    if (added == 1)
        return row.id;
    // Rare. An upsert with RETURNING would take one statement, and longer than the insertion of a new day.
    connection.execute(
        "UPDATE attendance SET scheduled_start_at = :start, scheduled_end_at = :end, grace_minutes = :grace,"
        " full_day_minutes = :full, check_in_at = :in, check_in_distance = :inDistance, check_out_at = :out,"
        " check_out_distance = :outDistance WHERE employee_id = :employee AND work_date = :date",
        row.scheduledStartAt, row.scheduledEndAt, row.graceMinutes, row.fullDayMinutes, row.checkInAt,
        row.checkInDistance, row.checkOutAt, row.checkOutDistance, employeeId, row.workDate);
    return connection.value<std::string>(
        "SELECT id FROM attendance WHERE employee_id = :employee AND work_date = :date", employeeId,
        row.workDate);
}

void storeCheckOut(Connection &connection, const AttendanceRow &row)
{
    connection.execute(
        "UPDATE attendance SET check_out_at = :at, check_out_distance = :distance WHERE id = :id",
        row.checkOutAt, row.checkOutDistance, row.id);
}

void voidAttendance(Connection &connection, const std::string &id)
{
    connection.execute(
        "UPDATE attendance SET check_in_at = NULL, check_in_distance = NULL, check_out_at = NULL,"
        " check_out_distance = NULL WHERE id = :id",
        id);
}

} // namespace clockwell::server
