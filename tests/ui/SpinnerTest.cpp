#include "ComponentStage.h"

#include <QTest>

#include <gtest/gtest.h>

namespace clockwell::test {

TEST(Spinner, DrawsInItsColor)
{
    ComponentStage stage("Spinner { size: 40; color: \"#2778F5\" }");
    EXPECT_EQ(stage.item()->size(), QSizeF(40, 40));
    EXPECT_GT(stage.inkOf(stage.item()), 100);
    EXPECT_EQ(stage.colorAt(20, 20), QColor(9, 21, 42));
}

TEST(Spinner, StepsWhileItIsShown)
{
    ComponentStage stage("Spinner {}");
    const QImage first = stage.shot();
    const int step = stage.item()->property("step").toInt();
    EXPECT_TRUE(QTest::qWaitFor([&] { return stage.item()->property("step").toInt() != step; }));
    EXPECT_NE(stage.shot(), first);
}

TEST(Spinner, StandsStillWhereMotionIsUnwanted)
{
    ComponentStage stage("Spinner { still: true }");
    QTest::qWait(350);
    EXPECT_EQ(stage.item()->property("step").toInt(), 0);
    EXPECT_GT(stage.inkOf(stage.item()), 30);
}

TEST(Spinner, StandsStillWhileItIsHidden)
{
    ComponentStage stage("Spinner { visible: false }");
    QTest::qWait(350);
    EXPECT_EQ(stage.item()->property("step").toInt(), 0);
    stage.item()->setVisible(true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return stage.item()->property("step").toInt() > 0; }));
}

} // namespace clockwell::test
