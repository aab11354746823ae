#include "attendance/HistoryRowTexts.h"

#include "ui/StatusVocabulary.h"

#include <QStringList>

namespace clockwell {

namespace {

QString minutes(qint64 count)
{
    return QString::number(count) + QStringLiteral("m");
}

QString spoken(const HistoryRowTexts &texts)
{
    QStringList parts{texts.day};
    if (!texts.status.isEmpty())
        parts.append(statusLabel(texts.status));
    parts.append(QStringLiteral("check-in ") + texts.checkIn);
    parts.append(QStringLiteral("check-out ") + texts.checkOut);
    if (!texts.summary.text.isEmpty())
        parts.append(texts.summary.text);
    return parts.join(QStringLiteral(", "));
}

} // namespace

HistorySummaryLine historySummaryLine(const AttendanceRecord &record)
{
    const qint64 worked = record.workingMinutes.value_or(0);
    const qint64 late = record.lateMinutes.value_or(0);
    if (worked >= 1) {
        const QString text = QStringLiteral("Worked ") + hoursAndMinutes(worked);
        return {late >= 1 ? text + QStringLiteral(" · late ") + minutes(late) : text, false};
    }
    if (late >= 1)
        return {QStringLiteral("Late ") + minutes(late), true};
    return {};
}

HistoryRowTexts historyRowTexts(const AttendanceRecord &record, const DateFormats &formats)
{
    HistoryRowTexts texts{.day = formats.day(record.workDate),
                          .status = record.status,
                          .checkIn = formats.time(record.checkInAt),
                          .checkOut = formats.time(record.checkOutAt),
                          .summary = historySummaryLine(record),
                          .spoken = {}};
    texts.spoken = spoken(texts);
    return texts;
}

} // namespace clockwell
