#include "ui/Superellipse.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace clockwell {

namespace {

// Distance from the corner of a large square to its outline, along the diagonal.
qreal diagonalGap(const QPainterPath &path)
{
    qreal nearest = std::numeric_limits<qreal>::max();
    for (int i = 0; i < path.elementCount(); ++i)
        nearest = std::min(nearest, std::hypot(path.elementAt(i).x, path.elementAt(i).y));
    return nearest;
}

} // namespace

TEST(Superellipse, PassesThroughTheMiddleOfTheCircularCorner)
{
    EXPECT_NEAR(diagonalGap(continuousRectangle({0, 0, 200, 200}, 14)), 14 * (std::numbers::sqrt2 - 1), 1e-6);
}

TEST(Superellipse, BeginsTheCornerFurtherOutThanACircle)
{
    EXPECT_DOUBLE_EQ(continuousCornerExtent({200, 200}, 14), 21);
    const QPainterPath path = continuousRectangle({0, 0, 200, 200}, 14);
    EXPECT_TRUE(path.contains(QPointF(21.5, .01)));
    EXPECT_FALSE(path.contains(QPointF(14, .01)));
}

TEST(Superellipse, FillsItsRectangle)
{
    EXPECT_EQ(continuousRectangle({3, 4, 50, 20}, 6).boundingRect(), QRectF(3, 4, 50, 20));
}

TEST(Superellipse, IsAPlainCapsuleAtHalfTheHeight)
{
    const QPainterPath path = continuousRectangle({0, 0, 80, 20}, 10);
    EXPECT_DOUBLE_EQ(continuousCornerExtent({80, 20}, 10), 10);
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPointF point(path.elementAt(i));
        if (point.x() >= 10)
            continue;
        EXPECT_NEAR(std::hypot(point.x() - 10, point.y() - 10), 10, 1e-6);
    }
}

TEST(Superellipse, LimitsTheRadiusToTheShape)
{
    EXPECT_EQ(continuousRectangle({0, 0, 80, 20}, 1000), continuousRectangle({0, 0, 80, 20}, 10));
}

TEST(Superellipse, IsARectangleWithoutRadius)
{
    EXPECT_EQ(continuousRectangle({0, 0, 8, 8}, 0).elementCount(), 5);
    EXPECT_EQ(continuousRectangle({0, 0, 8, 8}, -3).boundingRect(), QRectF(0, 0, 8, 8));
}

TEST(Superellipse, IsSymmetric)
{
    const QPainterPath path = continuousRectangle({-40, -25, 80, 50}, 12);
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPointF inside = QPointF(path.elementAt(i)) * .999;
        const QPointF outside = QPointF(path.elementAt(i)) * 1.001;
        for (const QPointF side : {QPointF(1, 1), QPointF(-1, 1), QPointF(1, -1), QPointF(-1, -1)}) {
            EXPECT_TRUE(path.contains(QPointF(inside.x() * side.x(), inside.y() * side.y())));
            EXPECT_FALSE(path.contains(QPointF(outside.x() * side.x(), outside.y() * side.y())));
        }
    }
}

} // namespace clockwell
