#pragma once

#include "attendance/DateFormats.h"
#include "net/WireRecords.h"

#include <QString>

namespace clockwell {

/// The texts of a day in the history.
namespace history {

/// What is said of the worked and late minutes; "Late 7m" stands alone, "late 7m" follows the worked time.
struct SummaryLine
{
    QString text; // empty: there is no line
    bool lateOnly = false;
};
SummaryLine summaryLine(const AttendanceRecord &record);

struct RowTexts
{
    QString day;
    QString status; // the server's code
    QString checkIn;
    QString checkOut;
    SummaryLine summary;
    QString spoken; // all of it, as a screen reader says it
};
RowTexts rowTexts(const AttendanceRecord &record, const DateFormats &formats);

} // namespace history

} // namespace clockwell
