#pragma once

#include "server/admin/Days.h"

namespace clockwell::server {

/// Of the form in docs/administration.md.
Json dayRecordJson(const DayRecord &record);
/// Prints it to standard output.
void printDayRecord(const DayRecord &record, bool json);

} // namespace clockwell::server
