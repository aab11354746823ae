#include "attendance/SummaryTiles.h"

#include "ui/Palette.h"

#include <QColor>

#include <array>

namespace clockwell {

namespace {

struct Tile
{
    QStringView label;
    QStringView symbol;
    QRgb tint;
    qint64 MonthlySummary::*count;
};

constexpr auto tiles = std::to_array<Tile>({
    {u"Present", u"checkmark.circle.fill", palette::success, &MonthlySummary::presentDays},
    {u"Late", u"clock.badge.exclamationmark.fill", palette::warning, &MonthlySummary::lateDays},
    {u"Absent", u"xmark.circle.fill", palette::danger, &MonthlySummary::absentDays},
    {u"On leave", u"airplane", palette::leave, &MonthlySummary::leaveDays},
    {u"Half days", u"circle.lefthalf.filled", palette::warning, &MonthlySummary::halfDays},
    {u"Late (min)", u"hourglass", palette::warning, &MonthlySummary::totalLateMinutes},
});

} // namespace

void SummaryTiles::setSummary(const std::optional<MonthlySummary> &summary)
{
    m_summary = summary;
    Q_EMIT dataChanged(index(0), index(rowCount() - 1), {CountRole, SpokenRole});
}

int SummaryTiles::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(tiles.size());
}

QVariant SummaryTiles::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const Tile &tile = tiles.at(static_cast<std::size_t>(index.row()));
    const QString count = m_summary ? QString::number((*m_summary).*tile.count) : QString();
    switch (role) {
    case LabelRole:
        return tile.label.toString();
    case SymbolRole:
        return tile.symbol.toString();
    case TintRole:
        return QColor::fromRgb(tile.tint);
    case CountRole:
        return count;
    case SpokenRole:
        return m_summary ? tile.label.toString() + QStringLiteral(", ") + count : QString();
    default:
        return {};
    }
}

QHash<int, QByteArray> SummaryTiles::roleNames() const
{
    return {{LabelRole, "label"},
            {SymbolRole, "symbol"},
            {TintRole, "tint"},
            {CountRole, "count"},
            {SpokenRole, "spoken"}};
}

} // namespace clockwell
