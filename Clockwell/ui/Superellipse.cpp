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
    for (int corner = 0; corner < 4; ++corner) {
        const bool right = corner == 0 || corner == 3;
        const bool bottom = corner < 2;
        for (int step = 0; step <= stepsPerCorner; ++step) {
            // From the vertical side to the horizontal one, and back at every other corner. The ends are
            // exactly on the sides, whatever the rounding, so that the sides fall on whole pixels.
            const int along = corner % 2 == 0 ? step : stepsPerCorner - step;
            const qreal angle = along * std::numbers::pi / (2 * stepsPerCorner);
            const qreal insetX = along == 0 ? 0 : extent * (1 - std::pow(std::cos(angle), power));
            const qreal insetY =
                along == stepsPerCorner ? 0 : extent * (1 - std::pow(std::sin(angle), power));
            const QPointF point(right ? rectangle.right() - insetX : rectangle.left() + insetX,
                                bottom ? rectangle.bottom() - insetY : rectangle.top() + insetY);
            corner == 0 && step == 0 ? path.moveTo(point) : path.lineTo(point);
        }
    }
    path.closeSubpath();
    return path;
}

} // namespace clockwell
