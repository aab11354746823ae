#include "attendance/RowChanges.h"

#include <QHash>

#include <algorithm>
#include <tuple>

namespace clockwell {

namespace {

using Records = QList<AttendanceRecord>;

/// A record's id and which of the records with that id it is.
using Identity = std::pair<QString, qsizetype>;

constexpr qsizetype gone = -1;

/// Identities of the records from `first` to before `last`.
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

/// For each row from `first` to before `last` afterwards, its row before, or `gone`.
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
        result.push_back(rows.value(identity, gone));
    return result;
}

/// Keeps the longest rising sequence of the origins and makes all others `gone`: what is kept never changes
/// places.
void keepRising(std::vector<qsizetype> &origins)
{
    std::vector<std::size_t> tails;                                    // of the best sequence of each length
    std::vector<std::size_t> previous(origins.size(), origins.size()); // in the sequence that ends there
    for (std::size_t i = 0; i < origins.size(); ++i) {
        if (origins[i] == gone)
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
        origins[i] = kept[i] ? origins[i] : gone;
}

void add(std::vector<RowRange> &ranges, qsizetype first, qsizetype count)
{
    if (count <= 0)
        return;
    if (!ranges.empty() && ranges.back().first + ranges.back().count == first)
        ranges.back().count += count;
    else
        ranges.push_back({first, count});
}

/// `origins` are those of the rows from `first` on, whose rows before end at `lastBefore`.
RowChanges between(const std::vector<qsizetype> &origins, qsizetype first, qsizetype lastBefore)
{
    RowChanges changes;
    qsizetype next = first; // row before that is not accounted for yet
    qsizetype row = first;
    for (const qsizetype origin : origins) {
        if (origin == gone) {
            add(changes.inserted, row, 1);
        } else {
            add(changes.removed, next, origin - next);
            next = origin + 1;
        }
        ++row;
    }
    add(changes.removed, next, lastBefore - next);
    return changes;
}

RowChanges placeByPlace(qsizetype before, qsizetype after)
{
    RowChanges changes;
    add(changes.removed, after, before - after);
    add(changes.inserted, before, after - before);
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

RowChanges rowChanges(const Records &before, const Records &after, std::size_t mostRanges)
{
    const qsizetype shorter = std::min(before.size(), after.size());
    qsizetype first = 0; // the rows above have the same ids
    while (first < shorter && before.at(first).id == after.at(first).id)
        ++first;
    qsizetype below = 0; // and so many at the end
    while (below < shorter - first &&
           before.at(before.size() - 1 - below).id == after.at(after.size() - 1 - below).id)
        ++below;
    auto from = origins(identities(before, first, before.size() - below),
                        identities(after, first, after.size() - below), first);
    keepRising(from);
    auto changes = between(from, first, before.size() - below);
    if (changes.removed.size() + changes.inserted.size() > mostRanges)
        return placeByPlace(before.size(), after.size());
    return changes;
}

} // namespace clockwell
