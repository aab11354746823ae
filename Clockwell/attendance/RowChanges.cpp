#include "attendance/RowChanges.h"

#include <QHash>

#include <algorithm>
#include <tuple>

namespace clockwell {

namespace {

using Records = QList<AttendanceRecord>;

/// The id of a record and its number among the records with the same id.
using Identity = std::pair<QString, qsizetype>;

constexpr qsizetype noOrigin = -1;

/// Identities of the records in the range [first, last).
std::vector<Identity> identities(const Records &records, qsizetype first, qsizetype last)
{
    QHash<QString, qsizetype> seen;
    seen.reserve(last - first);
    std::vector<Identity> result;
    result.reserve(static_cast<std::size_t>(last - first));
    for (qsizetype row = first; row < last; ++row)
        result.emplace_back(records.at(row).id, seen[records.at(row).id]++);
    return result;
}

/// For each identity of `after` its row in the old list, or `noOrigin`. `first` is the first row of both
/// ranges.
std::vector<qsizetype> origins(const std::vector<Identity> &before, const std::vector<Identity> &after,
                               qsizetype first)
{
    QHash<Identity, qsizetype> rows;
    rows.reserve(static_cast<qsizetype>(before.size()));
    for (const Identity &identity : before)
        rows.insert(identity, first + rows.size());
    std::vector<qsizetype> result;
    result.reserve(after.size());
    for (const Identity &identity : after)
        result.push_back(rows.value(identity, noOrigin));
    return result;
}

/// Keeps the longest increasing subsequence of the origins and sets all others to `noOrigin`, so that the
/// kept rows do not change their order.
void keepLongestIncreasing(std::vector<qsizetype> &origins)
{
    std::vector<std::size_t> tails; // of the best subsequence of each length
    std::vector<std::size_t> previous(origins.size(),
                                      origins.size()); // predecessor in the subsequence that ends there
    for (std::size_t i = 0; i < origins.size(); ++i) {
        if (origins[i] == noOrigin)
            continue;
        const auto place =
            std::ranges::lower_bound(tails, origins[i], {}, [&](auto at) { return origins[at]; });
        if (place != tails.begin())
            previous[i] = *(place - 1);
        if (place == tails.end())
            tails.push_back(i);
        else
            *place = i;
    }
    std::vector<bool> kept(origins.size());
    for (std::size_t i = tails.empty() ? origins.size() : tails.back(); i < origins.size(); i = previous[i])
        kept[i] = true;
    for (std::size_t i = 0; i < origins.size(); ++i)
        origins[i] = kept[i] ? origins[i] : noOrigin;
}

void appendRange(std::vector<RowRange> &ranges, qsizetype first, qsizetype count)
{
    if (count <= 0)
        return;
    if (!ranges.empty() && ranges.back().first + ranges.back().count == first)
        ranges.back().count += count;
    else
        ranges.push_back({first, count});
}

/// `origins` belongs to the new rows from `first` on; the old rows are those in [first, lastBefore).
RowChanges changesFrom(const std::vector<qsizetype> &origins, qsizetype first, qsizetype lastBefore)
{
    RowChanges changes;
    qsizetype next = first; // first old row that is not handled yet
    qsizetype row = first;
    for (const qsizetype origin : origins) {
        if (origin == noOrigin) {
            appendRange(changes.inserted, row, 1);
        } else {
            appendRange(changes.removed, next, origin - next);
            next = origin + 1;
        }
        ++row;
    }
    appendRange(changes.removed, next, lastBefore - next);
    return changes;
}

RowChanges changesByPosition(qsizetype before, qsizetype after)
{
    RowChanges changes;
    appendRange(changes.removed, after, before - after);
    appendRange(changes.inserted, before, after - before);
    return changes;
}

auto distance(const std::optional<LenientDouble> &meters)
{
    return meters ? meters->value : std::nullopt;
}

auto fields(const AttendanceRecord &r)
{
    return std::tie(r.id, r.workDate, r.status, r.checkInAt, r.checkOutAt, r.lateMinutes, r.earlyLeaveMinutes,
                    r.workingMinutes);
}

} // namespace

bool sameRecord(const AttendanceRecord &left, const AttendanceRecord &right)
{
    return fields(left) == fields(right) &&
           distance(left.checkInDistanceMeters) == distance(right.checkInDistanceMeters) &&
           distance(left.checkOutDistanceMeters) == distance(right.checkOutDistanceMeters);
}

RowChanges rowChanges(const Records &before, const Records &after, std::size_t maxRanges)
{
    const qsizetype shorter = std::min(before.size(), after.size());
    qsizetype first = 0; // number of leading rows with equal ids
    while (first < shorter && before.at(first).id == after.at(first).id)
        ++first;
    qsizetype below = 0; // number of trailing rows with equal ids
    while (below < shorter - first &&
           before.at(before.size() - 1 - below).id == after.at(after.size() - 1 - below).id)
        ++below;
    auto from = origins(identities(before, first, before.size() - below),
                        identities(after, first, after.size() - below), first);
    keepLongestIncreasing(from);
    auto changes = changesFrom(from, first, before.size() - below);
    if (changes.removed.size() + changes.inserted.size() > maxRanges)
        return changesByPosition(before.size(), after.size());
    return changes;
}

} // namespace clockwell
