#pragma once

#include "server/CalendarDay.h"
#include "server/History.h"
#include "server/JsonReply.h"
#include "server/Offices.h"
#include "server/Policy.h"
#include "server/Punches.h"

namespace clockwell::server {

/// The wire records of attendance. What is not known is left out, never sent as a made-up value.
Json recordJson(const HistoryDay &day);
Json officeJson(const Office &office);
Json punchJson(const PunchAnswer &answer);
Json summaryJson(Month month, const MonthTotals &totals);

} // namespace clockwell::server
