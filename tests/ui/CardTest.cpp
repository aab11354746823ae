#include "ComponentStage.h"

#include <gtest/gtest.h>

namespace clockwell::test {

namespace {

const QByteArray card =
    "Card { Rectangle { objectName: \"content\"; width: parent.width; height: 60; color: \"red\" } }";

} // namespace

TEST(Card, PadsItsContentByEighteenPointsOnEverySide)
{
    ComponentStage stage(card);
    const auto *content = stage.part("content");
    EXPECT_EQ(content->mapRectToItem(stage.item(), content->boundingRect()), QRectF(18, 18, 314, 60));
    EXPECT_EQ(stage.item()->height(), 60 + 36);
}

TEST(Card, FillsTheWidthItStandsIn)
{
    ComponentStage stage(card);
    EXPECT_EQ(stage.item()->width(), 350);
    stage.item()->parentItem()->setWidth(200);
    EXPECT_EQ(stage.item()->width(), 200);
    EXPECT_EQ(stage.part("content")->width(), 164);
}

TEST(Card, GrowsWithItsContent)
{
    ComponentStage stage(card);
    stage.part("content")->setHeight(100);
    EXPECT_EQ(stage.item()->height(), 136);
}

TEST(Card, IsFilledWithTheCardColorInsideAOnePointOutline)
{
    ComponentStage stage(card);
    const QColor fill(13, 30, 58);
    const QColor outline = stage.colorAt(175, 0);
    // White at eight percent over the fill.
    EXPECT_NEAR(outline.red(), 13 + .08 * (255 - 13), 1.5);
    EXPECT_NEAR(outline.green(), 30 + .08 * (255 - 30), 1.5);
    EXPECT_NEAR(outline.blue(), 58 + .08 * (255 - 58), 1.5);
    EXPECT_EQ(stage.colorAt(175, 1), fill);
    EXPECT_EQ(stage.colorAt(0, 48), outline);
    EXPECT_EQ(stage.colorAt(1, 48), fill);
    EXPECT_EQ(stage.colorAt(349, 48), outline);
    EXPECT_EQ(stage.colorAt(175, 95), outline);
    EXPECT_EQ(stage.colorAt(175, 94), fill);
    EXPECT_EQ(stage.colorAt(175, 96), QColor(9, 21, 42));
}

TEST(Card, HasCornersOfFourteenPoints)
{
    ComponentStage stage(card);
    EXPECT_EQ(stage.item()->property("radius").toReal(), 14);
    EXPECT_EQ(stage.colorAt(2, 2), QColor(9, 21, 42));
    EXPECT_EQ(stage.colorAt(6, 6), QColor(13, 30, 58));
}

} // namespace clockwell::test
