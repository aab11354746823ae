#include "ComponentStage.h"

#include <gtest/gtest.h>

namespace clockwell::test {

namespace {

const QColor background(9, 21, 42);

QImage part(ComponentStage &stage)
{
    const auto *item = stage.item();
    return stage.shot().copy(item->mapRectToScene(item->boundingRect()).toRect());
}

} // namespace

TEST(ContinuousRectangle, FillsEvenlyWithExactColors)
{
    ComponentStage stage("ContinuousRectangle { width: 100; height: 60; radius: 12; color: \"#2778F5\" }");
    for (const QPoint point :
         {QPoint(50, 0), QPoint(50, 59), QPoint(0, 30), QPoint(99, 30), QPoint(50, 30)}) {
        EXPECT_EQ(stage.colorAt(point.x(), point.y()), QColor(0x27, 0x78, 0xf5))
            << point.x() << ',' << point.y();
    }
    EXPECT_EQ(stage.colorAt(0, 0), background);
    EXPECT_EQ(stage.colorAt(100, 30), background);
    EXPECT_EQ(stage.colorAt(50, 60), background);
}

TEST(ContinuousRectangle, IsSymmetricToThePixel)
{
    for (const char *size : {"width: 100; height: 60", "width: 100; height: 24", "width: 101; height: 21",
                             "width: 21; height: 90", "width: 6; height: 6", "width: 37; height: 37"}) {
        ComponentStage stage(QByteArray("ContinuousRectangle { radius: 12; color: \"white\"; borderWidth: 1; "
                                        "borderColor: \"red\"; ") +
                             size + " }");
        const QImage image = part(stage);
        EXPECT_EQ(image, image.mirrored(true, false)) << size;
        EXPECT_EQ(image, image.mirrored(false, true)) << size;
    }
}

TEST(ContinuousRectangle, DrawsItsOutlineInside)
{
    ComponentStage stage("ContinuousRectangle { width: 100; height: 60; radius: 12; color: \"white\"; "
                         "borderWidth: 2; borderColor: \"#ff0000\" }");
    EXPECT_EQ(stage.colorAt(50, 0), QColor(Qt::red));
    EXPECT_EQ(stage.colorAt(50, 1), QColor(Qt::red));
    EXPECT_EQ(stage.colorAt(50, 2), QColor(Qt::white));
    EXPECT_EQ(stage.colorAt(1, 30), QColor(Qt::red));
    EXPECT_EQ(stage.colorAt(2, 30), QColor(Qt::white));
    EXPECT_EQ(stage.colorAt(-1, 30), background);
}

TEST(ContinuousRectangle, DrawsAnOutlineAlone)
{
    ComponentStage stage("ContinuousRectangle { width: 100; height: 60; radius: 12; borderWidth: 1; "
                         "borderColor: \"#ff0000\" }");
    EXPECT_EQ(stage.colorAt(50, 0), QColor(Qt::red));
    EXPECT_EQ(stage.colorAt(50, 30), background);
}

TEST(ContinuousRectangle, RoundsACapsule)
{
    ComponentStage stage("ContinuousRectangle { width: 100; height: 20; radius: 10; color: \"white\" }");
    EXPECT_EQ(stage.colorAt(1, 2), background);
    EXPECT_EQ(stage.colorAt(3, 3), QColor(Qt::white));
    EXPECT_EQ(stage.colorAt(10, 0), QColor(Qt::white));
}

TEST(ContinuousRectangle, FollowsEveryChange)
{
    ComponentStage stage("ContinuousRectangle { width: 100; height: 60; radius: 12; color: \"white\" }");
    EXPECT_EQ(stage.colorAt(50, 30), QColor(Qt::white));
    stage.item()->setProperty("color", QColor(Qt::green));
    EXPECT_EQ(stage.colorAt(50, 30), QColor(Qt::green));
    EXPECT_EQ(stage.colorAt(50, 0), QColor(Qt::green));
    stage.item()->setProperty("radius", 0);
    EXPECT_EQ(stage.colorAt(0, 0), QColor(Qt::green));
    stage.item()->setProperty("borderWidth", 1);
    stage.item()->setProperty("borderColor", QColor(Qt::red));
    EXPECT_EQ(stage.colorAt(0, 0), QColor(Qt::red));
    stage.item()->setSize({40, 40});
    EXPECT_EQ(stage.colorAt(39, 20), QColor(Qt::red));
    EXPECT_EQ(stage.colorAt(41, 20), background);
    stage.item()->setSize({0, 40});
    EXPECT_EQ(stage.colorAt(0, 20), background);
    stage.item()->setSize({10, 40});
    EXPECT_EQ(stage.colorAt(5, 20), QColor(Qt::green));
}

TEST(ContinuousRectangle, IsNotInTheAccessibilityTree)
{
    ComponentStage stage("ContinuousRectangle { width: 100; height: 60 }");
    EXPECT_TRUE(stage.screen().elements().isEmpty());
}

} // namespace clockwell::test
