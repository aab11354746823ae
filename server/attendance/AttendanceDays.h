#pragma once

#include "server/attendance/CalendarDay.h"
#include "server/attendance/Offices.h"
#include "server/attendance/Policy.h"
#include "server/storage/Connection.h"

#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace clockwell::server {

/// One row of the table of attendance: what counts of an employee's working day.
struct AttendanceRow
{
    std::string id;
    std::string workDate;
    long long scheduledStartAt = 0;
    long long scheduledEndAt = 0;
    long long graceMinutes = 0;
    long long fullDayMinutes = 0;
    long long checkInAt = 0;
    std::optional<double> checkInDistance; ///< metres; nothing for a corrected time, here and below
    std::optional<long long> checkOutAt;
    std::optional<double> checkOutDistance;

    static constexpr const char *columnNames =
        "id work_date scheduled_start_at scheduled_end_at grace_minutes full_day_minutes check_in_at"
        " check_in_distance check_out_at check_out_distance";
    auto columns()
    {
        return std::tie(id, workDate, scheduledStartAt, scheduledEndAt, graceMinutes, fullDayMinutes,
                        checkInAt, checkInDistance, checkOutAt, checkOutDistance);
    }

    WorkedDay worked() const;
};

/// The employee's day with a check-in of this date. Never found by being the newest: there may be rows of
/// later days, when a clock was ahead or an office moved west.
std::optional<AttendanceRow> findAttendanceOn(Connection &connection, const std::string &employeeId, Day day);
/// The employee's days with a check-in from the first to the last, oldest first.
std::vector<AttendanceRow> findAttendance(Connection &connection, const std::string &employeeId, Day first,
                                          Day last);

/// The employee's day of this date if it was voided, with its schedule but without any time.
std::optional<AttendanceRow> findVoidedAttendance(Connection &connection, const std::string &employeeId,
                                                  Day day);

/// A day with this schedule, in the office's time zone, without a check-in so far.
AttendanceRow newAttendance(const OfficeHours &hours, const TimeZone &zone, Day day);

/// Makes the row what counts of the employee's day, also where another one was stored. Returns its
/// identifier, which is the one that was stored if there was one.
std::string storeAttendance(Connection &connection, const std::string &employeeId, const AttendanceRow &row);
void storeCheckOut(Connection &connection, const AttendanceRow &row);
/// From now on the day counts as one without punches.
void voidAttendance(Connection &connection, const std::string &id);

} // namespace clockwell::server
