#pragma once

#include "server/attendance/CalendarDay.h"
#include "server/attendance/Policy.h"
#include "server/storage/Connection.h"

#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace clockwell::server {

/// One row of the table of attendance: an employee's working day with its punches.
struct AttendanceRow
{
    std::string id;
    std::string workDate;
    long long scheduledStartAt = 0;
    long long scheduledEndAt = 0;
    long long graceMinutes = 0;
    long long fullDayMinutes = 0;
    long long checkInAt = 0;
    double checkInDistance = 0;
    std::optional<long long> checkOutAt;
    std::optional<double> checkOutDistance;

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
/// The employee's days with punches from the first to the last, oldest first.
std::vector<AttendanceRow> findAttendance(Connection &connection, const std::string &employeeId, Day first,
                                          Day last);

void insertAttendance(Connection &connection, const std::string &employeeId, const AttendanceRow &row);
void storeCheckOut(Connection &connection, const AttendanceRow &row);

} // namespace clockwell::server
