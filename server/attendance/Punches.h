#pragma once

#include "server/attendance/AttendanceDays.h"
#include "server/attendance/Offices.h"
#include "server/attendance/WorkCalendar.h"
#include "server/storage/Database.h"
#include "server/storage/Instant.h"

#include <chrono>
#include <string>
#include <tuple>
#include <vector>

namespace clockwell::server {

/// One row of the table of punches: what came from the device, whatever counts by now.
struct Punch
{
    std::string type; ///< "IN" or "OUT"
    long long at = 0;
    std::string deviceId;
    double distance = 0; ///< metres between the punch and the office

    static constexpr const char *columnNames = "type at device_id distance";
    auto columns() { return std::tie(type, at, deviceId, distance); }
};

/// The punches of an employee's day, in the order in which they came.
std::vector<Punch> findPunches(Connection &connection, const std::string &employeeId, Day day);

/// What a device says about where it is.
struct PunchClaim
{
    double latitude = 0;  ///< degrees
    double longitude = 0; ///< degrees
    double accuracy = 0;  ///< metres; 0 when the device cannot tell
    std::string deviceId;
    bool mockLocation = false;
};

/// A punch that was recorded, with the day it belongs to.
struct PunchAnswer
{
    std::string type; ///< "IN" or "OUT"
    Assessment assessment;
    AttendanceRow row; ///< as it was right after the punch
    std::string officeName;
    double distance = 0;     ///< metres between the punch and the office
    bool isRepeated = false; ///< it had been recorded before
};

/// Decides and records punches. Safe on several threads; docs/server.md says the rules.
class Punches
{
public:
    /// `repeatWindow`: a punch that comes again from the same device this soon is the same punch.
    Punches(Database &database, Clock clock, std::chrono::seconds repeatWindow)
        : m_database(database), m_clock(std::move(clock)), m_repeatWindow(repeatWindow)
    {}

    /// All in one transaction: once this returns the punch is on the disk. Throws ApiError for a refusal.
    PunchAnswer punch(const Employee &employee, const PunchClaim &claim);

    /// The same as a part of the caller's transaction, at the given time.
    PunchAnswer punchAt(Connection &connection, const Employee &employee, const PunchClaim &claim,
                        Instant now) const;

private:
    std::optional<PunchAnswer> repeated(Connection &connection, const Employee &employee,
                                        const Office &office, const PunchClaim &claim, Instant now) const;

    Database &m_database;
    Clock m_clock;
    std::chrono::seconds m_repeatWindow;
};

} // namespace clockwell::server
