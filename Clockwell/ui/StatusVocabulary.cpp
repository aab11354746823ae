#include "StatusVocabulary.h"

#include "Palette.h"

#include <algorithm>
#include <array>
#include <utility>

namespace clockwell {

namespace {

constexpr auto colors = std::to_array<std::pair<QStringView, QRgb>>({
    {u"ON_TIME", palette::success},
    {u"APPROVED", palette::success},
    {u"LATE", palette::warning},
    {u"HALF_DAY", palette::warning},
    {u"PENDING", palette::warning},
    {u"ABSENT", palette::danger},
    {u"MISSING_PUNCH", palette::danger},
    {u"MISSING_CHECK_OUT", palette::danger},
    {u"REJECTED", palette::danger},
    {u"SUSPENDED", palette::danger},
    {u"ON_LEAVE", palette::leave},
});

} // namespace

QRgb statusColor(QStringView status)
{
    const auto entry = std::ranges::find(colors, status, &std::pair<QStringView, QRgb>::first);
    return entry == colors.end() ? palette::textMuted : entry->second;
}

QString statusLabel(const QString &status)
{
    QString label = status;
    return label.replace(QLatin1Char('_'), QLatin1Char(' '));
}

} // namespace clockwell
