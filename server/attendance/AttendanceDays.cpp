#include "server/attendance/AttendanceDays.h"

namespace clockwell::server {

namespace {

const std::string attendanceSelect =
    "SELECT id, work_date, scheduled_start_at, scheduled_end_at, grace_minutes, full_day_minutes, "
    "check_in_at,"
    " check_in_distance, check_out_at, check_out_distance FROM attendance WHERE employee_id = :employee";

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
    static const std::string sql = attendanceSelect + " AND work_date = :day";
    return connection.first<AttendanceRow>(sql, employeeId, toText(day));
}

std::vector<AttendanceRow> findAttendance(Connection &connection, const std::string &employeeId, Day first,
                                          Day last)
{
    return connection.all<AttendanceRow>(attendanceSelect +
                                             " AND work_date BETWEEN :first AND :last ORDER BY work_date",
                                         employeeId, toText(first), toText(last));
}

void insertAttendance(Connection &connection, const std::string &employeeId, const AttendanceRow &row)
{
    connection.execute("INSERT INTO attendance (id, employee_id, work_date, scheduled_start_at, "
                       "scheduled_end_at, grace_minutes,"
                       " full_day_minutes, check_in_at, check_in_distance) VALUES (:id, :employee, :date, "
                       ":start, :end, :grace,"
                       " :full, :at, :distance)",
                       row.id, employeeId, row.workDate, row.scheduledStartAt, row.scheduledEndAt,
                       row.graceMinutes, row.fullDayMinutes, row.checkInAt, row.checkInDistance);
}

void storeCheckOut(Connection &connection, const AttendanceRow &row)
{
    connection.execute(
        "UPDATE attendance SET check_out_at = :at, check_out_distance = :distance WHERE id = :id",
        row.checkOutAt, row.checkOutDistance, row.id);
}

} // namespace clockwell::server
