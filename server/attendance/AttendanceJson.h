#pragma once

#include "server/attendance/CalendarDay.h"
#include "server/attendance/History.h"
#include "server/attendance/Offices.h"
#include "server/attendance/Policy.h"
#include "server/attendance/Punches.h"
#include "server/http/JsonReply.h"

namespace clockwell::server {

/// The wire records of attendance. What is not known is left out, never sent as a made-up value.
Json recordJson(const HistoryDay &day);
Json officeJson(const Office &office);
Json punchJson(const PunchAnswer &answer);
Json summaryJson(Month month, const MonthTotals &totals);

} // namespace clockwell::server
