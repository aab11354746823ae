#pragma once

#include <QPointF>
#include <QRectF>

namespace clockwell {

/// Where the top left corner of a menu of `size` goes that belongs to `field`: above it; below it where there
/// is no room above; where there is none on either side, as near as possible on the roomier one. Its middle
/// is at `x` as far as it then stays between the sides of the field or, where it is wider than that, inside
/// `area`, with a little distance to the sides. Whole points, all in the same coordinates.
QPointF placeEditMenu(const QRectF &field, qreal x, const QSizeF &size, const QRectF &area);

/// The least distance to the sides of the area, and that to the field, in points.
inline constexpr qreal editMenuGap = 8;

} // namespace clockwell
