#include "attendance/HistoryModel.h"

#include "ui/Palette.h"

#include <QAbstractItemModelTester>
#include <QColor>
#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono;

namespace clockwell {
namespace {

constexpr Instant nine = sys_days(2025y / March / 3) + 9h + 4min;

AttendanceRecord record(const QString &id, std::optional<qint64> worked = {}, std::optional<qint64> late = {})
{
    AttendanceRecord day;
    day.id = id;
    day.workDate = u"2025-03-03"_s;
    day.status = u"ON_TIME"_s;
    day.checkInAt = nine;
    day.checkOutAt = nine + 8h + 5min;
    day.lateMinutes = late;
    day.workingMinutes = worked;
    return day;
}

std::string line(std::optional<qint64> worked, std::optional<qint64> late)
{
    return historySummaryLine(record(u"1"_s, worked, late)).text.toStdString();
}

TEST(HistorySummaryLine, ShowsWorkedTimeAndLateness)
{
    EXPECT_EQ(line(492, 7), "Worked 8h 12m · late 7m");
    EXPECT_EQ(line(61, {}), "Worked 1h 1m");
    EXPECT_EQ(line(1, 0), "Worked 0h 1m");
    EXPECT_EQ(line(60, -4), "Worked 1h 0m");
}

TEST(HistorySummaryLine, LatenessAloneIsCapitalized)
{
    EXPECT_EQ(line(0, 15), "Late 15m");
    EXPECT_EQ(line({}, 7), "Late 7m");
    EXPECT_EQ(line(-5, 1), "Late 1m");
}

TEST(HistorySummaryLine, IsEmptyWithoutWorkAndLateness)
{
    EXPECT_EQ(line({}, {}), "");
    EXPECT_EQ(line(0, 0), "");
    EXPECT_EQ(line({}, 0), "");
}

class HistoryModelTest : public ::testing::Test
{
protected:
    QString text(int row, HistoryModel::Role role) const
    {
        return model.data(model.index(row), role).toString();
    }
    QStringList days() const
    {
        QStringList result;
        for (int row = 0; row < model.rowCount(); ++row)
            result.append(text(row, HistoryModel::SummaryRole));
        return result;
    }

    HistoryModel model{DateFormats("en_US", "UTC")};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
    QSignalSpy inserted{&model, &QAbstractItemModel::rowsInserted};
    QSignalSpy removed{&model, &QAbstractItemModel::rowsRemoved};
    QSignalSpy changed{&model, &QAbstractItemModel::dataChanged};
    QSignalSpy reset{&model, &QAbstractItemModel::modelReset};
};

TEST_F(HistoryModelTest, RowHasFormattedTexts)
{
    model.setRecords({record(u"1"_s, 485, 4)});
    EXPECT_EQ(text(0, HistoryModel::DayRole), u"Mon, 3 Mar 2025"_s);
    EXPECT_EQ(text(0, HistoryModel::StatusRole), u"ON_TIME"_s);
    EXPECT_EQ(text(0, HistoryModel::CheckInRole), u"9:04 AM"_s);
    EXPECT_EQ(text(0, HistoryModel::CheckOutRole), u"5:09 PM"_s);
    EXPECT_EQ(text(0, HistoryModel::SummaryRole), u"Worked 8h 5m · late 4m"_s);
    EXPECT_EQ(text(0, HistoryModel::SpokenRole),
              u"Mon, 3 Mar 2025, ON TIME, check-in 9:04 AM, check-out 5:09 PM, Worked 8h 5m · late 4m"_s);
    EXPECT_EQ(model.data(model.index(0), HistoryModel::SummaryColorRole).value<QColor>().rgb(),
              palette::textMuted);
}

TEST_F(HistoryModelTest, LatenessAloneIsAWarning)
{
    model.setRecords({record(u"1"_s, 0, 15)});
    EXPECT_EQ(model.data(model.index(0), HistoryModel::SummaryColorRole).value<QColor>().rgb(),
              palette::warning);
}

TEST_F(HistoryModelTest, ShowsAnInvalidDateUnchangedAndMissingTimesAsDashes)
{
    AttendanceRecord day;
    day.workDate = u"2025-13-01"_s;
    day.status = u"ABSENT"_s;
    model.setRecords({day});
    EXPECT_EQ(text(0, HistoryModel::SpokenRole), u"2025-13-01, ABSENT, check-in —, check-out —"_s);
    EXPECT_EQ(text(0, HistoryModel::SummaryRole), QString());
}

TEST_F(HistoryModelTest, RepeatedResponseEmitsNoSignals)
{
    model.setRecords({record(u"1"_s, 1), record(u"2"_s, 2)});
    inserted.clear();
    model.setRecords({record(u"1"_s, 1), record(u"2"_s, 2)});
    EXPECT_EQ(inserted.size() + removed.size() + changed.size() + reset.size(), 0);
}

TEST_F(HistoryModelTest, OnlyRowsThatDifferChange)
{
    model.setRecords({record(u"1"_s, 1), record(u"2"_s, 2), record(u"3"_s, 3)});
    inserted.clear();
    model.setRecords({record(u"1"_s, 1), record(u"2"_s, 20), record(u"3"_s, 3)});
    ASSERT_EQ(changed.size(), 1);
    EXPECT_EQ(changed.at(0).at(0).toModelIndex().row(), 1);
    EXPECT_EQ(changed.at(0).at(1).toModelIndex().row(), 1);
    EXPECT_EQ(inserted.size() + removed.size() + reset.size(), 0);
    EXPECT_EQ(text(1, HistoryModel::SummaryRole), u"Worked 0h 20m"_s);
}

TEST_F(HistoryModelTest, NewDayIsOneInsertedRow)
{
    model.setRecords({record(u"1"_s, 1), record(u"2"_s, 2)});
    inserted.clear();
    model.setRecords({record(u"0"_s, 9), record(u"1"_s, 1), record(u"2"_s, 2)});
    ASSERT_EQ(inserted.size(), 1);
    EXPECT_EQ(inserted.at(0).at(1).toInt(), 0);
    EXPECT_EQ(inserted.at(0).at(2).toInt(), 0);
    EXPECT_EQ(removed.size() + changed.size() + reset.size(), 0);
    EXPECT_EQ(days(), QStringList({u"Worked 0h 9m"_s, u"Worked 0h 1m"_s, u"Worked 0h 2m"_s}));
}

TEST_F(HistoryModelTest, RowsMatchTheResponseAfterAnyOtherResponse)
{
    const QList<QList<AttendanceRecord>> answers{
        {},
        {record(u"1"_s, 1), record(u"1"_s, 2), record(u""_s, 3), record(u""_s, 4)},
        {record(u""_s, 4), record(u"1"_s, 2)},
        {record(u"2"_s, 5), record(u"1"_s, 1), record(u"3"_s, 6), record(u"1"_s, 2)},
        {record(u"3"_s, 6), record(u"2"_s, 5)},
    };
    for (const auto &before : answers) {
        for (const auto &after : answers) {
            model.setRecords(before);
            model.setRecords(after);
            QStringList expected;
            for (const auto &one : after)
                expected.append(historySummaryLine(one).text);
            ASSERT_EQ(days(), expected);
        }
    }
    EXPECT_EQ(reset.size(), 0);
}

TEST_F(HistoryModelTest, RowOutOfRangeHasNoTexts)
{
    model.setRecords({record(u"1"_s)});
    EXPECT_FALSE(model.data(model.index(1), HistoryModel::DayRole).isValid());
    EXPECT_FALSE(model.data({}, HistoryModel::DayRole).isValid());
    EXPECT_FALSE(model.data(model.index(0), Qt::DisplayRole).isValid());
}

TEST(HistoryModelSettings, UpdatedTextsUseTheDevicesZone)
{
    HistoryModel model(DateFormats("en_US", {}));
    qputenv("TZ", "UTC");
    model.setRecords({record(u"1"_s)});
    EXPECT_EQ(model.data(model.index(0), HistoryModel::CheckInRole).toString(), u"9:04 AM"_s);
    qputenv("TZ", "Asia/Kathmandu");
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    model.updateTexts();
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(model.data(model.index(0), HistoryModel::CheckInRole).toString(), u"2:49 PM"_s);
    qunsetenv("TZ");
}

} // namespace
} // namespace clockwell
