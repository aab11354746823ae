#include "ui/SvgPath.h"

#include <gtest/gtest.h>

namespace clockwell {

namespace {

// A rectangle's points are exact; curves are compared by where they end and how far they reach.
void expectEnd(const char *data, QPointF end)
{
    const QPainterPath path = parseSvgPath(data);
    EXPECT_NEAR(path.currentPosition().x(), end.x(), 1e-9) << data;
    EXPECT_NEAR(path.currentPosition().y(), end.y(), 1e-9) << data;
}

void expectBounds(const char *data, QRectF bounds, qreal tolerance)
{
    const QRectF found = parseSvgPath(data).boundingRect();
    EXPECT_NEAR(found.left(), bounds.left(), tolerance) << data;
    EXPECT_NEAR(found.top(), bounds.top(), tolerance) << data;
    EXPECT_NEAR(found.right(), bounds.right(), tolerance) << data;
    EXPECT_NEAR(found.bottom(), bounds.bottom(), tolerance) << data;
}

} // namespace

TEST(SvgPath, DrawsAbsoluteAndRelativeLines)
{
    expectEnd("M1,2L3,4", {3, 4});
    expectEnd("m1 2 l3 4", {4, 6});
    expectEnd("M10 10H20V30h-5v-5", {15, 25});
}

TEST(SvgPath, TakesNumbersAfterAMoveAsLines)
{
    EXPECT_EQ(parseSvgPath("M0 0 10 0 10 10").elementCount(), 3);
    expectEnd("m5 5 1 1 1 1", {7, 7});
}

TEST(SvgPath, ReadsNumbersWithoutSeparators)
{
    expectEnd("M1-2.5.5.25", {.5, .25});
    expectEnd("M+1+2L1e1-5E-1", {10, -.5});
}

TEST(SvgPath, ReturnsToTheStartOnClose)
{
    expectEnd("M5 6l10 0 0 10z", {5, 6});
    expectEnd("M5 6l10 0 0 10zl1 1", {6, 7});
}

TEST(SvgPath, DrawsCurves)
{
    expectEnd("M0 0C0 10 10 10 10 0", {10, 0});
    expectEnd("M0 0c0 10 10 10 10 0s10-10 10 0", {20, 0});
    expectEnd("M0 0Q5 10 10 0T20 0", {20, 0});
    expectBounds("M0 0Q5 10 10 0T20 0", {0, -5, 20, 10}, 1e-6);
}

TEST(SvgPath, DrawsAllFourArcsBetweenTwoPoints)
{
    expectBounds("M0 0A10 10 0 0 1 10 10", {0, 0, 10, 10}, .01);
    expectBounds("M0 0A10 10 0 0 0 10 10", {0, 0, 10, 10}, .01);
    expectBounds("M0 0A10 10 0 1 1 10 10", {0, -10, 20, 20}, .01);
    expectBounds("M0 0A10 10 0 1 0 10 10", {-10, 0, 20, 20}, .01);
}

TEST(SvgPath, DrawsArcsWithFlagsGrownTogether)
{
    expectBounds("M80 128a48 48 0 1148 48", {80, 80, 96, 96}, .02);
    expectEnd("M80 128a48,48,0,1,148,48", {128, 176});
}

TEST(SvgPath, EnlargesArcRadiiThatDoNotReach)
{
    expectBounds("M0 0A1 1 0 0 1 10 0", {0, -5, 10, 5}, .01);
}

TEST(SvgPath, DrawsTurnedEllipses)
{
    expectBounds("M-10 0A10 5 0 0 1 10 0A10 5 0 0 1 -10 0", {-10, -5, 20, 10}, .01);
    expectBounds("M0 -10A10 5 90 0 1 0 10A10 5 90 0 1 0 -10", {-5, -10, 10, 20}, .01);
}

TEST(SvgPath, DrawsALineForAnArcWithoutRadius)
{
    EXPECT_EQ(parseSvgPath("M0 0A0 5 0 0 1 10 0").elementCount(), 2);
    expectEnd("M0 0A0 5 0 0 1 10 0", {10, 0});
}

TEST(SvgPath, EndsBeforeAnError)
{
    expectEnd("M1 2L3 4L5 x", {3, 4});
    expectEnd("M1 2L3 4A5 5 0 2 1 9 9", {3, 4});
    expectEnd("M1 2L3 4W5 6", {3, 4});
    expectEnd("M1 2L3 4z5 6", {1, 2});
    EXPECT_TRUE(parseSvgPath("").isEmpty());
    EXPECT_TRUE(parseSvgPath("12 13").isEmpty());
    EXPECT_TRUE(parseSvgPath("M").isEmpty());
}

} // namespace clockwell
