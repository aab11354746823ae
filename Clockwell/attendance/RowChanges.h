#pragma once

#include "net/WireRecords.h"

#include <QList>

#include <optional>
#include <vector>

namespace clockwell {

/// `count` consecutive rows, beginning with `first`.
struct RowRange
{
    qsizetype first = 0;
    qsizetype count = 0;

    friend bool operator==(const RowRange &, const RowRange &) = default;
};

/// The changes that turn one list of records into another: first the rows to remove, numbered as in the old
/// list, then the rows to insert, numbered as in the new list. All other rows stay in their order.
struct RowChanges
{
    std::vector<RowRange> removed;
    std::vector<RowRange> inserted;
};

/// The minimal changes between two responses. Records are identified by their `id`, and those with equal ids
/// by their order. A moved record is removed and inserted. When more than `maxRanges` ranges result, rows at
/// the same position are treated as the same rows instead, and rows are only added or removed at the end:
/// texts change then, but the scroll position stays. O(n log n); 10,000 rows take a few milliseconds.
RowChanges rowChanges(const QList<AttendanceRecord> &before, const QList<AttendanceRecord> &after,
                      std::size_t maxRanges = 64);

bool sameRecord(const AttendanceRecord &left, const AttendanceRecord &right);

} // namespace clockwell
