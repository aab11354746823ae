#pragma once

#include "server/attendance/CalendarDay.h"
#include "server/auth/Accounts.h"
#include "server/storage/Database.h"

#include <chrono>

namespace clockwell::server {

/// How far the demonstration's history reaches back from today.
inline constexpr std::chrono::days demoHistoryLength{61};

/// Gives the employee a plausible past with days of every status, up to yesterday; made by the same rules as
/// real punches. A part of the caller's transaction.
void insertDemoHistory(Connection &connection, Database &database, const Employee &employee, Day today);

} // namespace clockwell::server
