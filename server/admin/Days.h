#pragma once

#include "server/admin/Audit.h"
#include "server/admin/ClockTime.h"
#include "server/admin/Outcome.h"
#include "server/attendance/AttendanceDays.h"
#include "server/attendance/Offices.h"
#include "server/attendance/Policy.h"
#include "server/attendance/Punches.h"
#include "server/auth/Accounts.h"

#include <optional>
#include <string>
#include <vector>

namespace clockwell::server {

/// An employee's day, and the office whose clock and rules it goes by.
struct EmployeeDay
{
    Employee employee;
    Office office;
    TimeZone zone;
    Day day;
    std::optional<AttendanceRow> row; ///< what counts of it; nothing for a day without a check-in
};

/// Throws AdminError: NotFound for an unknown address, Refused for an employee without an office.
EmployeeDay requireEmployeeDay(Connection &connection, const std::string &email, Day day);

/// The times that a day is to count with; what is not given stays as it is.
struct Correction
{
    std::optional<ClockTime> checkIn;
    std::optional<ClockTime> checkOut;
    std::string reason;
};

struct ChangedDay
{
    Outcome outcome;
    EmployeeDay after;
};

// Both are a part of the caller's transaction, which they enter into the audit. The punches themselves stay
// as they were. They throw AdminError Refused for one's own day and for another company's employees.

/// Lets a day count with other times. Throws Refused for a time that does not exist or is still to come, for
/// a check-out that is not after the check-in, and for the first check-in on a day that is not open.
ChangedDay correctDay(Connection &connection, const Audit &audit, const EmployeeDay &day,
                      const Correction &correction, Instant now);
/// Lets a day count as one without punches.
ChangedDay voidDay(Connection &connection, const Audit &audit, const EmployeeDay &day,
                   const std::string &reason);

/// What counts of a day, on the office's clock and in UTC; null for a day without a check-in.
Json countedJson(const EmployeeDay &day);

/// All that is known of a day, for administrators.
struct DayRecord
{
    EmployeeDay day;
    std::optional<Assessment> assessment; ///< nothing for a day that does not count, or not yet
    std::vector<Punch> punches;           ///< in the order in which they came
    std::vector<AuditEntry> corrections;
};

DayRecord readDayRecord(Connection &connection, const EmployeeDay &day, Instant now);

} // namespace clockwell::server
