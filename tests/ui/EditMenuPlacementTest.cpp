#include "ui/EditMenuPlacement.h"

#include <gtest/gtest.h>

namespace clockwell::test {
namespace {

constexpr QRectF phone(0, 0, 320, 568);
constexpr QSizeF bar(200, 44);

TEST(EditMenuPlacement, StandsAboveTheMiddleItIsGiven)
{
    EXPECT_EQ(placeEditMenu({20, 200, 280, 44}, 160, bar, phone), QPointF(60, 200 - 8 - 44));
}

TEST(EditMenuPlacement, StandsBelowWhereThereIsNoRoomAbove)
{
    EXPECT_EQ(placeEditMenu({20, 59, 280, 44}, 160, bar, phone).y(), 59 + 44 + 8);
    EXPECT_EQ(placeEditMenu({20, 60, 280, 44}, 160, bar, phone).y(), 8);
}

TEST(EditMenuPlacement, StaysBetweenTheSidesOfTheField)
{
    EXPECT_EQ(placeEditMenu({20, 200, 280, 44}, 30, bar, phone).x(), 20);
    EXPECT_EQ(placeEditMenu({20, 200, 280, 44}, 310, bar, phone).x(), 20 + 280 - 200);
}

TEST(EditMenuPlacement, WiderThanTheFieldItStaysInsideTheWindow)
{
    EXPECT_EQ(placeEditMenu({20, 200, 280, 44}, 30, {300, 44}, phone).x(), 8);
    EXPECT_EQ(placeEditMenu({20, 200, 280, 44}, 310, {300, 44}, phone).x(), 320 - 8 - 300);
    EXPECT_EQ(placeEditMenu({-100, 200, 280, 44}, 30, bar, phone).x(), 8); // half of the field is outside
}

TEST(EditMenuPlacement, StaysInsideWhereThereIsRoomOnNeitherSide)
{
    const QSizeF column(150, 300);
    const QRectF aboveAKeyboard(0, 0, 320, 340);
    EXPECT_EQ(placeEditMenu({20, 100, 280, 44}, 160, column, aboveAKeyboard).y(), 340 - 8 - 300);
    EXPECT_EQ(placeEditMenu({20, 200, 280, 44}, 160, column, aboveAKeyboard).y(), 8);
}

TEST(EditMenuPlacement, BeginsAtTheEdgeWhereItIsTooLarge)
{
    EXPECT_EQ(placeEditMenu({20, 100, 280, 44}, 160, {500, 900}, phone), QPointF(8, 8));
}

TEST(EditMenuPlacement, StandsOnWholePoints)
{
    EXPECT_EQ(placeEditMenu({20, 200.4, 280, 44}, 160.3, {201, 44.5}, phone), QPointF(60, 148));
}

} // namespace
} // namespace clockwell::test
