#include "SymbolTable.h"

#include "SvgPath.h"

#include <QFile>
#include <QHash>
#include <QTransform>

#include <algorithm>
#include <array>

namespace clockwell {

namespace {

struct Entry
{
    QStringView name;
    QStringView icon;
    bool mirrored = false; // left and right exchanged
};

// The icons are those of the icon set's folders "regular" and "fill"; Symbols.cmake lists the same files.
constexpr auto table = std::to_array<Entry>({
    {u"airplane", u"fill/airplane-fill"},
    {u"arrow.down.right.circle", u"regular/arrow-circle-down-right"},
    {u"arrow.up.right.circle", u"regular/arrow-circle-up-right"},
    {u"building.2.fill", u"fill/buildings-fill"},
    {u"calendar", u"regular/calendar-blank"},
    {u"calendar.badge.clock", u"regular/calendar-dots"},
    {u"chart.bar.fill", u"fill/chart-bar-fill"},
    {u"checkmark.circle.fill", u"fill/check-circle-fill"},
    {u"checkmark.seal.fill", u"fill/seal-check-fill"},
    {u"checkmark.shield.fill", u"fill/shield-check-fill"},
    {u"chevron.left", u"regular/caret-left"},
    {u"chevron.right", u"regular/caret-right"},
    {u"circle.lefthalf.filled", u"fill/circle-half-fill", true}, // the set fills the right half
    {u"clock.badge.exclamationmark.fill", u"fill/clock-countdown-fill"},
    {u"exclamationmark.triangle.fill", u"fill/warning-fill"},
    {u"eye", u"regular/eye"},
    {u"eye.slash", u"regular/eye-slash"},
    {u"hourglass", u"regular/hourglass"},
    {u"info.circle.fill", u"fill/info-fill"},
    {u"key.fill", u"fill/key-fill"},
    {u"location.circle", u"regular/gps-fix"},
    {u"location.fill.viewfinder", u"fill/gps-fix-fill"},
    {u"location.slash.fill", u"fill/gps-slash-fill"},
    {u"person.crop.circle", u"regular/user-circle"},
    {u"rectangle.portrait.and.arrow.right", u"regular/sign-out"},
    {u"xmark", u"regular/x"},
    {u"xmark.circle.fill", u"fill/x-circle-fill"},
});

// Every icon of the set is one path on a square of this side.
constexpr qreal side = 256;

QPainterPath readIcon(QStringView icon)
{
    QFile file(QStringLiteral(":/clockwell/symbols/%1.svg").arg(icon));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray svg = file.readAll();
    const QByteArrayView attribute = "<path d=\"";
    const qsizetype start = svg.indexOf(attribute);
    const qsizetype end = start < 0 ? start : svg.indexOf('"', start + attribute.size());
    if (end < 0)
        return {};
    QPainterPath path =
        parseSvgPath(QByteArrayView(svg).sliced(start + attribute.size(), end - start - attribute.size()));
    path.setFillRule(Qt::WindingFill); // the default of SVG
    return path;
}

} // namespace

QStringList symbolNames()
{
    QStringList names;
    std::ranges::transform(table, std::back_inserter(names),
                           [](const Entry &entry) { return entry.name.toString(); });
    return names;
}

QPainterPath symbolPath(const QString &name)
{
    static QHash<QString, QPainterPath> known;
    const auto found = known.constFind(name);
    if (found != known.constEnd())
        return *found;
    const auto entry = std::ranges::find(table, name, &Entry::name);
    QPainterPath path = entry == table.end() ? QPainterPath() : readIcon(entry->icon);
    if (entry != table.end() && entry->mirrored)
        path = QTransform(-1, 0, 0, 1, side, 0).map(path);
    known.insert(name, path);
    return path;
}

} // namespace clockwell
