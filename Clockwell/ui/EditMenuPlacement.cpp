#include "EditMenuPlacement.h"

#include <algorithm>
#include <cmath>

namespace clockwell {

namespace {

/// As near to `wanted` as a length fits between the two ends; at the first end where it does not fit at all.
qreal fitted(qreal wanted, qreal length, qreal from, qreal to)
{
    return std::round(std::max(from, std::min(wanted, to - length)));
}

} // namespace

QPointF placeEditMenu(const QRectF &field, qreal x, const QSizeF &size, const QRectF &area)
{
    const QRectF inside = area.adjusted(editMenuGap, editMenuGap, -editMenuGap, -editMenuGap);
    const QRectF shared = inside.intersected(QRectF(field.x(), inside.y(), field.width(), inside.height()));
    const QRectF range = size.width() <= shared.width() ? shared : inside;
    const qreal above = field.top() - editMenuGap - size.height();
    const qreal below = field.bottom() + editMenuGap;
    const bool fitsAbove = above >= inside.top();
    const bool fitsBelow = below + size.height() <= inside.bottom();
    const bool roomierAbove = field.top() - inside.top() >= inside.bottom() - field.bottom();
    const qreal y = fitsAbove || (!fitsBelow && roomierAbove) ? above : below;
    return {fitted(x - size.width() / 2, size.width(), range.left(), range.right()),
            fitted(y, size.height(), inside.top(), inside.bottom())};
}

} // namespace clockwell
