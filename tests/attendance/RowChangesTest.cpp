#include "attendance/RowChanges.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <ranges>

namespace clockwell {

void PrintTo(const RowRange &range, std::ostream *out)
{
    *out << range.first << "+" << range.count;
}

namespace {

using Records = QList<AttendanceRecord>;
using Ranges = std::vector<RowRange>;

AttendanceRecord withId(const QString &id)
{
    AttendanceRecord record;
    record.id = id;
    return record;
}

Records recordsOf(const char *ids)
{
    Records records;
    for (const char *id = ids; *id != '\0'; ++id)
        records.append(withId(*id == '-' ? QString() : QString(QLatin1Char(*id))));
    return records;
}

RowChanges changes(const char *before, const char *after)
{
    return rowChanges(recordsOf(before), recordsOf(after));
}

/// The ids after applying the changes as a view does.
QStringList applied(const Records &before, const Records &after, const RowChanges &changes)
{
    QStringList rows;
    for (const AttendanceRecord &record : before)
        rows.append(record.id);
    for (const RowRange &range : std::views::reverse(changes.removed))
        rows.remove(range.first, range.count);
    for (const RowRange &range : changes.inserted)
        for (qsizetype i = 0; i < range.count; ++i)
            rows.insert(range.first + i, after.at(range.first + i).id);
    return rows;
}

QStringList ids(const Records &records)
{
    QStringList result;
    for (const AttendanceRecord &record : records)
        result.append(record.id);
    return result;
}

TEST(RowChanges, EqualIdsChangeNothing)
{
    const RowChanges none = changes("abcde", "abcde");
    EXPECT_TRUE(none.removed.empty() && none.inserted.empty());
    const RowChanges empty = changes("", "");
    EXPECT_TRUE(empty.removed.empty() && empty.inserted.empty());
}

TEST(RowChanges, NewDayIsOneInsertedRow)
{
    EXPECT_EQ(changes("abc", "xabc").inserted, (Ranges{{0, 1}}));
    EXPECT_EQ(changes("abc", "abcx").inserted, (Ranges{{3, 1}}));
    EXPECT_EQ(changes("abc", "axbc").inserted, (Ranges{{1, 1}}));
    EXPECT_TRUE(changes("abc", "xabc").removed.empty());
}

TEST(RowChanges, FillingAndClearingAreOneRange)
{
    EXPECT_EQ(changes("", "abcde").inserted, (Ranges{{0, 5}}));
    EXPECT_EQ(changes("abcde", "").removed, (Ranges{{0, 5}}));
}

TEST(RowChanges, RowsAreRemovedAndInsertedInSeveralPlaces)
{
    const RowChanges both = changes("abcdefg", "xbcyfgz");
    EXPECT_EQ(both.removed, (Ranges{{0, 1}, {3, 2}}));
    EXPECT_EQ(both.inserted, (Ranges{{0, 1}, {3, 1}, {6, 1}}));
}

TEST(RowChanges, MovedRowIsRemovedAndInserted)
{
    const RowChanges moved = changes("abcde", "acdeb");
    EXPECT_EQ(moved.removed, (Ranges{{1, 1}}));
    EXPECT_EQ(moved.inserted, (Ranges{{4, 1}}));
}

TEST(RowChanges, EqualAndEmptyIdsAreDistinguishedByTheirOrder)
{
    EXPECT_TRUE(changes("aaa", "aaa").removed.empty());
    EXPECT_EQ(changes("aab", "aaab").inserted.size(), 1U);
    EXPECT_EQ(changes("a--b", "a---b").inserted.size(), 1U);
    EXPECT_EQ(changes("--", "-").removed, (Ranges{{1, 1}}));
}

TEST(RowChanges, WithTooManyRangesRowsKeepTheirPositions)
{
    Records before;
    for (int i = 0; i < 200; ++i)
        before.append(withId(QString::number(i)));
    Records after = before;
    std::ranges::shuffle(after, std::mt19937(1));
    after.append(withId(QStringLiteral("new")));
    const RowChanges byPlace = rowChanges(before, after, 8);
    EXPECT_TRUE(byPlace.removed.empty());
    EXPECT_EQ(byPlace.inserted, (Ranges{{200, 1}}));
    EXPECT_EQ(rowChanges(after, before.first(50), 8).removed, (Ranges{{50, 151}}));
}

TEST(RowChanges, ChangesTurnAnyListIntoAnyOther)
{
    std::mt19937 random(1);
    for (int round = 0; round < 3000; ++round) {
        const auto any = [&] {
            Records records;
            const auto count = random() % 12;
            for (unsigned i = 0; i < count; ++i)
                records.append(withId(QString::number(random() % 9)));
            return records;
        };
        const Records before = any();
        const Records after = any();
        const RowChanges made = rowChanges(before, after);
        ASSERT_EQ(applied(before, after, made), ids(after))
            << ids(before).join(u' ').toStdString() << " -> " << ids(after).join(u' ').toStdString();
    }
}

TEST(SameRecord, ComparesEveryField)
{
    AttendanceRecord plain = withId(QStringLiteral("1"));
    plain.workDate = QStringLiteral("d");
    plain.status = QStringLiteral("s");
    EXPECT_TRUE(sameRecord(plain, plain));
    const Instant moment{std::chrono::milliseconds(1)};
    for (const auto &change : std::initializer_list<void (*)(AttendanceRecord &, Instant)>{
             [](AttendanceRecord &r, Instant) { r.id.clear(); },
             [](AttendanceRecord &r, Instant) { r.workDate.clear(); },
             [](AttendanceRecord &r, Instant) { r.status.clear(); },
             [](AttendanceRecord &r, Instant m) { r.checkInAt = m; },
             [](AttendanceRecord &r, Instant m) { r.checkOutAt = m; },
             [](AttendanceRecord &r, Instant) { r.lateMinutes = 0; },
             [](AttendanceRecord &r, Instant) { r.earlyLeaveMinutes = 0; },
             [](AttendanceRecord &r, Instant) { r.workingMinutes = 0; },
             [](AttendanceRecord &r, Instant) { r.checkInDistanceMeters = LenientDouble{1}; },
             [](AttendanceRecord &r, Instant) { r.checkOutDistanceMeters = LenientDouble{1}; }}) {
        AttendanceRecord other = plain;
        change(other, moment);
        EXPECT_FALSE(sameRecord(plain, other));
    }
}

} // namespace
} // namespace clockwell
