#pragma once

#include <QPainterPath>
#include <QRectF>

namespace clockwell {

/// How far a corner of this radius reaches along the sides of a rectangle of this size, in the radius' unit.
qreal continuousCornerExtent(QSizeF size, qreal radius);

/// A rectangle whose corners are quarters of a superellipse: they pass through the middle of the circular
/// corner of the same radius, but begin further out, so that the curvature grows from zero and the eye finds
/// no joint. Where the sides leave no room for that, the corner approaches the circle: half the height as
/// radius gives a plain capsule.
QPainterPath continuousRectangle(const QRectF &rectangle, qreal radius);

} // namespace clockwell
