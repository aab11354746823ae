#include "ComponentStage.h"
#include "ui/Theme.h"

#include <QSignalSpy>
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
    EXPECT_TRUE(QTest::qWaitFor([&] { return stage.shot() != first; }));
    const QImage second = stage.shot();
    EXPECT_TRUE(QTest::qWaitFor([&] { return stage.shot() != second; })); // it goes on
}

TEST(Spinner, StandsStillWhereMotionIsUnwanted)
{
    ComponentStage stage("Spinner {}");
    stage.theme().setReducedMotion(true);
    const QImage first = stage.shot();
    EXPECT_GT(stage.inkOf(stage.item()), 30);
    EXPECT_FALSE(QTest::qWaitFor([&] { return stage.shot() != first; }, 350));
}

TEST(Spinner, StandsStillWithoutAFrameWhileItDoesNotRun)
{
    ComponentStage stage("Spinner { running: false }");
    EXPECT_GT(stage.inkOf(stage.item()), 30);
    QTest::qWait(100); // what is pending
    QSignalSpy frames(&stage.window(), &QQuickWindow::frameSwapped);
    QTest::qWait(350);
    EXPECT_EQ(frames.count(), 0);
}

TEST(Spinner, IsNotInTheAccessibilityTree)
{
    ComponentStage stage("Spinner {}");
    EXPECT_TRUE(stage.screen().elements().isEmpty());
}

TEST(Spinner, StandsStillWhileItIsHidden)
{
    ComponentStage stage("Spinner { visible: false }");
    QTest::qWait(100); // what is pending
    QSignalSpy frames(&stage.window(), &QQuickWindow::frameSwapped);
    QTest::qWait(350);
    EXPECT_EQ(frames.count(), 0);
    stage.item()->setVisible(true);
    const QImage first = stage.shot();
    EXPECT_TRUE(QTest::qWaitFor([&] { return stage.shot() != first; }));
}

} // namespace clockwell::test
