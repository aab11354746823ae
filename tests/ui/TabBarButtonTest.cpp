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
    stage.item()->setProperty("checked", true);
    EXPECT_TRUE(stage.screen().find(attendance)->state.selected);
}

TEST(TabBarButton, IsTintedInTheBrandColorWhileSelected)
{
    ComponentStage stage(tab);
    const auto *label = stage.shownText(attendance);
    ASSERT_TRUE(label);
    EXPECT_EQ(label->property("color").value<QColor>(), QColor(91, 123, 168));
    stage.item()->setProperty("checked", true);
    EXPECT_EQ(label->property("color").value<QColor>(), QColor(39, 120, 245));
    EXPECT_FALSE(stage.areaOf(QColor(39, 120, 245)).isEmpty());
    EXPECT_TRUE(stage.areaOf(QColor(91, 123, 168)).isEmpty());
}

TEST(TabBarButton, ReactsToTouchKeyAndAssistiveTechnology)
{
    ComponentStage stage(tab);
    QSignalSpy clicked(stage.item(), SIGNAL(clicked()));
    EXPECT_GE(stage.item()->height(), 44);
    EXPECT_TRUE(stage.screen().click(attendance));
    QTest::keyClick(&stage.window(), Qt::Key_Tab);
    QTest::keyClick(&stage.window(), Qt::Key_Space);
    QTest::keyClick(&stage.window(), Qt::Key_Return);
    EXPECT_TRUE(stage.screen().press(attendance));
    EXPECT_EQ(clicked.count(), 4);
}

TEST(TabBarButton, KeepsItsWholeTitleAtTwiceTheTextSize)
{
    ComponentStage stage(tab);
    stage.theme().setTextScale(2);
    stage.shot();
    const auto *label = stage.shownText(attendance);
    ASSERT_TRUE(label);
    EXPECT_FALSE(label->property("truncated").toBool());
    EXPECT_LE(label->property("contentWidth").toReal(), 96);
    EXPECT_GT(label->property("contentHeight").toReal(), 14);
}

} // namespace clockwell::test
