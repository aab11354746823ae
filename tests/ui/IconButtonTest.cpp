#include "ComponentStage.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace clockwell::test {

namespace {

const QByteArray button = "IconButton { symbol: \"xmark\"; label: \"Close\" }";

} // namespace

TEST(IconButton, IsFortyFourPointsLarge)
{
    ComponentStage stage(button);
    EXPECT_EQ(stage.item()->size(), QSizeF(44, 44));
}

TEST(IconButton, IsAButtonWithTheNameOfItsLabel)
{
    ComponentStage stage(button);
    ASSERT_EQ(stage.screen().elements().size(), 1);
    const auto element = stage.screen().elements().constFirst();
    EXPECT_EQ(element.name, QStringLiteral("Close"));
    EXPECT_EQ(element.role, QAccessible::Button);
    EXPECT_TRUE(element.state.focusable);
}

TEST(IconButton, ReactsToTouchKeyAndAssistiveTechnology)
{
    ComponentStage stage(button);
    QSignalSpy clicked(stage.item(), SIGNAL(clicked()));
    QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, QPoint(22, 62));
    EXPECT_EQ(clicked.count(), 1);
    stage.item()->forceActiveFocus(Qt::TabFocusReason);
    QTest::keyClick(&stage.window(), Qt::Key_Space);
    EXPECT_EQ(clicked.count(), 2);
    EXPECT_TRUE(stage.screen().press(QStringLiteral("Close")));
    EXPECT_EQ(clicked.count(), 3);
}

} // namespace clockwell::test
