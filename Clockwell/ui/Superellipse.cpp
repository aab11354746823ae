#include "Superellipse.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace clockwell {

namespace {

// Beyond this the corner looks sharper than its radius promises.
constexpr qreal reach = 1.5;
constexpr int stepsPerCorner = 24;

qreal limitedRadius(QSizeF size, qreal radius)
{
    return std::clamp(radius, 0.0, std::min(size.width(), size.height()) / 2);
}

// The exponent n of |x/a|^n + |y/a|^n = 1 that meets the diagonal where a circle of the radius does.
qreal exponent(qreal extent, qreal radius)
{
    const qreal gap = (1 - std::numbers::sqrt2 / 2) * radius / extent;
    return -std::numbers::ln2 / std::log(1 - gap);
}

} // namespace

qreal continuousCornerExtent(QSizeF size, qreal radius)
{
    return std::min(reach * limitedRadius(size, radius), std::min(size.width(), size.height()) / 2);
}

QPainterPath continuousRectangle(const QRectF &rectangle, qreal radius)
{
    QPainterPath path;
    const qreal limited = limitedRadius(rectangle.size(), radius);
    if (limited <= 0) {
        path.addRect(rectangle);
        return path;
    }
    const qreal extent = continuousCornerExtent(rectangle.size(), radius);
    const qreal power = 2 / exponent(extent, limited);
    const QPointF middle = rectangle.center();
    const qreal straightX = rectangle.width() / 2 - extent;
    const qreal straightY = rectangle.height() / 2 - extent;
    for (int corner = 0; corner < 4; ++corner) {
        for (int step = 0; step <= stepsPerCorner; ++step) {
            const qreal angle = (corner + qreal(step) / stepsPerCorner) * std::numbers::pi / 2;
            const qreal cosine = std::cos(angle);
            const qreal sine = std::sin(angle);
            // The side comes from the corner, not from the sign: at its ends the sign is a rounding error.
            const qreal sideX = corner == 0 || corner == 3 ? 1 : -1;
            const qreal sideY = corner < 2 ? 1 : -1;
            const QPointF point(middle.x() + sideX * (straightX + extent * std::pow(std::abs(cosine), power)),
                                middle.y() + sideY * (straightY + extent * std::pow(std::abs(sine), power)));
            corner == 0 && step == 0 ? path.moveTo(point) : path.lineTo(point);
        }
    }
    path.closeSubpath();
    return path;
}

} // namespace clockwell
