#pragma once

#include "attendance/DateFormats.h"
#include "attendance/HistoryRowTexts.h"
#include "attendance/RowChanges.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace clockwell {

/// The days of the history as rows of formatted texts. Texts are formatted when a row is requested, so that
/// the cost depends on the visible rows, not on the length of the history. A new response changes only the
/// rows that differ. Main thread only.
class HistoryModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of HistoryViewModel")

public:
    enum Role {
        DayRole = Qt::UserRole,
        StatusRole,
        CheckInRole,
        CheckOutRole,
        SummaryRole,
        SummaryColorRole,
        SpokenRole,
    };

    explicit HistoryModel(DateFormats formats, QObject *parent = nullptr);

    void setRecords(const QList<AttendanceRecord> &records);
    /// Makes views request their rows again, after a possible change of the device's locale or time zone.
    void updateTexts();

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    using Row = const AttendanceRecord *;

    void removeRanges(const std::vector<RowRange> &ranges);
    void insertRanges(const std::vector<RowRange> &ranges, const QList<AttendanceRecord> &records);
    /// Points every row at its record in the new response and returns the rows whose content changed.
    std::vector<RowRange> assignRecords(const QList<AttendanceRecord> &records);
    const HistoryRowTexts &textsOf(Row row) const;

    DateFormats m_formats;
    QList<AttendanceRecord> m_records; // m_rows points into it
    std::vector<Row> m_rows;
    // The texts of the row requested last are cached: a delegate requests all of them one after the other.
    mutable Row m_textsRow = nullptr;
    mutable HistoryRowTexts m_texts;
};

} // namespace clockwell
