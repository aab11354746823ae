#pragma once

#include "attendance/DateFormats.h"
#include "attendance/HistoryTexts.h"
#include "attendance/RowChanges.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace clockwell {

/// The days of the history as rows of finished texts. Texts are made when a row is asked for, so that a long
/// history costs what is shown of it. A new answer changes only the rows that differ. Main thread.
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
    /// Has the rows that are shown asked for again: the device's locale or time zone may have changed.
    void renewTexts();

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    using Row = const AttendanceRecord *;

    void take(const std::vector<RowRange> &ranges);
    void put(const std::vector<RowRange> &ranges, const QList<AttendanceRecord> &records);
    /// Points every row at its record of the new answer; the rows that changed by that.
    std::vector<RowRange> repoint(const QList<AttendanceRecord> &records);
    const history::RowTexts &textsOf(Row row) const;

    DateFormats m_formats;
    QList<AttendanceRecord> m_records; // what the rows point at, between two answers
    std::vector<Row> m_rows;
    // Those of the row that was asked for last: a delegate asks for all of them in turn.
    mutable Row m_known = nullptr;
    mutable history::RowTexts m_texts;
};

} // namespace clockwell
