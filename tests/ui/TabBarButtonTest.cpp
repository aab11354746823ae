#include "ComponentStage.h"
#include "ui/Theme.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace clockwell::test {

namespace {

const QByteArray tab =
    "TabBarButton { width: 96; title: \"Attendance\"; symbol: \"location.fill.viewfinder\" }";
const auto attendance = QStringLiteral("Attendance");

} // namespace

TEST(TabBarButton, IsAPageTabNamedByItsTitle)
{
    ComponentStage stage(tab);
    ASSERT_EQ(stage.screen().elements().size(), 1);
    EXPECT_EQ(stage.screen().elements().constFirst().name, attendance);
    EXPECT_EQ(stage.screen().elements().constFirst().role, QAccessible::PageTab);
}

TEST(TabBarButton, ReportsWhetherItIsSelected)
{
    ComponentStage stage(tab);
    EXPECT_FALSE(stage.screen().find(attendance)->state.selected);
    EXPECT_TRUE(stage.screen().find(attendance)->state.selectable);
    stage.item()->setProperty("selected", true);
    EXPECT_TRUE(stage.screen().find(attendance)->state.selected);
}

TEST(TabBarButton, IsTintedInTheBrandColorWhileSelected)
{
    ComponentStage stage(tab);
    EXPECT_EQ(stage.part("label")->property("color").value<QColor>(), QColor(91, 123, 168));
    stage.item()->setProperty("selected", true);
    EXPECT_EQ(stage.part("label")->property("color").value<QColor>(), QColor(39, 120, 245));
}

TEST(TabBarButton, ReactsToTouchKeyAndAssistiveTechnology)
{
    ComponentStage stage(tab);
    QSignalSpy triggered(stage.item(), SIGNAL(triggered()));
    EXPECT_GE(stage.item()->height(), 44);
    EXPECT_TRUE(stage.screen().click(attendance));
    QTest::keyClick(&stage.window(), Qt::Key_Tab);
    QTest::keyClick(&stage.window(), Qt::Key_Space);
    EXPECT_TRUE(stage.screen().press(attendance));
    EXPECT_EQ(triggered.count(), 3);
}

TEST(TabBarButton, KeepsItsWholeTitleAtTwiceTheTextSize)
{
    ComponentStage stage(tab);
    stage.theme().setTextScale(2);
    stage.shot();
    EXPECT_FALSE(stage.part("label")->property("truncated").toBool());
    EXPECT_LE(stage.part("label")->property("contentWidth").toReal(), 96);
    EXPECT_GT(stage.part("label")->property("contentHeight").toReal(), 14);
}

} // namespace clockwell::test
