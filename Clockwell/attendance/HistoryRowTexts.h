#pragma once

#include "attendance/DateFormats.h"
#include "net/WireRecords.h"

#include <QString>

namespace clockwell {

/// The line about worked and late minutes: "Late 7m" alone, or "late 7m" after the worked time.
struct HistorySummaryLine
{
    QString text; // empty: no line
    bool lateOnly = false;
};
HistorySummaryLine historySummaryLine(const AttendanceRecord &record);

/// The texts of one day in the history.
struct HistoryRowTexts
{
    QString day;
    QString status; // the server's code
    QString checkIn;
    QString checkOut;
    HistorySummaryLine summary;
    QString spoken; // all texts, for screen readers
};
HistoryRowTexts historyRowTexts(const AttendanceRecord &record, const DateFormats &formats);

} // namespace clockwell
