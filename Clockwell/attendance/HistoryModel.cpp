#include "attendance/HistoryModel.h"

#include "ui/Palette.h"

#include <QColor>

#include <ranges>

namespace clockwell {

HistoryModel::HistoryModel(DateFormats formats, QObject *parent)
    : QAbstractListModel(parent), m_formats(std::move(formats))
{}

void HistoryModel::setRecords(const QList<AttendanceRecord> &records)
{
    const RowChanges changes = rowChanges(m_records, records);
    removeRanges(changes.removed);
    insertRanges(changes.inserted, records);
    const auto changed = assignRecords(records);
    m_textsRow = nullptr;
    m_records = records;
    for (const RowRange &range : changed)
        Q_EMIT dataChanged(index(static_cast<int>(range.first)),
                           index(static_cast<int>(range.first + range.count - 1)));
}

// From the end, so that the numbers of the remaining ranges stay valid.
void HistoryModel::removeRanges(const std::vector<RowRange> &ranges)
{
    for (const RowRange &range : std::views::reverse(ranges)) {
        beginRemoveRows({}, static_cast<int>(range.first), static_cast<int>(range.first + range.count - 1));
        m_rows.erase(m_rows.begin() + range.first, m_rows.begin() + range.first + range.count);
        endRemoveRows();
    }
}

void HistoryModel::insertRanges(const std::vector<RowRange> &ranges, const QList<AttendanceRecord> &records)
{
    for (const RowRange &range : ranges) {
        beginInsertRows({}, static_cast<int>(range.first), static_cast<int>(range.first + range.count - 1));
        const auto place =
            m_rows.insert(m_rows.begin() + range.first, static_cast<std::size_t>(range.count), nullptr);
        for (qsizetype i = 0; i < range.count; ++i)
            *(place + i) = &records.at(range.first + i);
        endInsertRows();
    }
}

std::vector<RowRange> HistoryModel::assignRecords(const QList<AttendanceRecord> &records)
{
    std::vector<RowRange> changed;
    for (qsizetype row = 0; row < records.size(); ++row) {
        const Row after = &records.at(row);
        const Row before = std::exchange(m_rows[static_cast<std::size_t>(row)], after);
        if (before == after || sameRecord(*before, *after))
            continue;
        if (!changed.empty() && changed.back().first + changed.back().count == row)
            ++changed.back().count;
        else
            changed.push_back({row, 1});
    }
    return changed;
}

void HistoryModel::updateTexts()
{
    m_textsRow = nullptr;
    if (!m_rows.empty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1));
}

int HistoryModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant HistoryModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const HistoryRowTexts &texts = textsOf(m_rows.at(static_cast<std::size_t>(index.row())));
    switch (role) {
    case DayRole:
        return texts.day;
    case StatusRole:
        return texts.status;
    case CheckInRole:
        return texts.checkIn;
    case CheckOutRole:
        return texts.checkOut;
    case SummaryRole:
        return texts.summary.text;
    case SummaryColorRole:
        return QColor::fromRgb(texts.summary.lateOnly ? palette::warning : palette::textMuted);
    case SpokenRole:
        return texts.spoken;
    default:
        return {};
    }
}

QHash<int, QByteArray> HistoryModel::roleNames() const
{
    return {{DayRole, "day"},           {StatusRole, "status"},   {CheckInRole, "checkIn"},
            {CheckOutRole, "checkOut"}, {SummaryRole, "summary"}, {SummaryColorRole, "summaryColor"},
            {SpokenRole, "spoken"}};
}

const HistoryRowTexts &HistoryModel::textsOf(Row row) const
{
    if (m_textsRow != row) {
        m_texts = historyRowTexts(*row, m_formats);
        m_textsRow = row;
    }
    return m_texts;
}

} // namespace clockwell
