#pragma once

#include "server/attendance/Offices.h"
#include "server/attendance/TimeZone.h"
#include "server/auth/Accounts.h"
#include "server/auth/Passwords.h"
#include "server/storage/Database.h"
#include "server/storage/Instant.h"

#include <optional>
#include <string>

namespace clockwell::server {

inline constexpr const char *demoEmail = "demo@clockwell.example";
inline constexpr const char *defaultDemoPassword = "Clockwell-2026";

/// What one needs to know to try the demonstration.
struct DemoFacts
{
    Employee employee;
    Office office;

    auto columns() { return std::tuple_cat(employee.columns(), office.columns()); }
};

/// Fills an empty database with a small organisation: an office that is open every day, two managers, and one
/// employee with two months of history up to yesterday. Returns false, and changes nothing, when there are
/// employees already. All or nothing.
bool fillWithDemoData(Database &database, Passwords &passwords, const Clock &clock, const TimeZone &zone,
                      const std::string &password);

/// Deletes everything but the schema and the audit, and enters that there.
void deleteAllData(Database &database);

/// The demonstration's facts; nothing when the database holds something else.
std::optional<DemoFacts> findDemoFacts(Database &database);

} // namespace clockwell::server
