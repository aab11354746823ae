#pragma once

#include "server/admin/DayCorrections.h"
#include "server/attendance/Policy.h"

#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace clockwell::server {

/// A punch as it came from the device, whatever counts by now.
struct PunchRecord
{
    std::string type; ///< IN or OUT
    long long at = 0;
    double distance = 0; ///< metres from the office

    auto columns() { return std::tie(type, at, distance); }
};

/// All that is known of a day, for administrators.
struct DayRecord
{
    EmployeeDay day;
    std::optional<Assessment> assessment; ///< nothing for a day that does not count, or not yet
    std::vector<PunchRecord> punches;     ///< in the order in which they came
    std::vector<AuditEntry> corrections;
};

DayRecord readDayRecord(Connection &connection, const EmployeeDay &day, Instant now);

Json dayRecordJson(const DayRecord &record);
/// Prints it to standard output.
void printDayRecord(const DayRecord &record, bool json);

} // namespace clockwell::server
