#include "ComponentStage.h"
#include "ui/Theme.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace clockwell::test {

namespace {

const QByteArray page = "NavigationPage { width: 350; height: 300; title: \"Reset password\"; "
                        "QorField { objectName: \"field\"; width: parent.width; label: \"Email\" } "
                        "Rectangle { objectName: \"fill\"; anchors.fill: parent; color: \"transparent\" } }";

} // namespace

TEST(NavigationPage, ShowsItsTitleAndTheWayBack)
{
    ComponentStage stage(page);
    EXPECT_EQ(stage.screen().find(QStringLiteral("Reset password"))->role, QAccessible::StaticText);
    EXPECT_EQ(stage.screen().find(QStringLiteral("Back"))->role, QAccessible::Button);
}

TEST(NavigationPage, GoesBackByButtonEscapeBackKeyAndAssistiveTechnology)
{
    ComponentStage stage(page);
    QSignalSpy back(stage.item(), SIGNAL(back()));
    EXPECT_TRUE(stage.screen().click(QStringLiteral("Back")));
    EXPECT_EQ(back.count(), 1);
    stage.item()->forceActiveFocus();
    QTest::keyClick(&stage.window(), Qt::Key_Escape);
    EXPECT_EQ(back.count(), 2);
    QTest::keyClick(&stage.window(), Qt::Key_Back);
    EXPECT_EQ(back.count(), 3);
    EXPECT_TRUE(stage.screen().press(QStringLiteral("Back")));
    EXPECT_EQ(back.count(), 4);
}

TEST(NavigationPage, GoesBackByEscapeFromAFieldWithinIt)
{
    ComponentStage stage(page);
    QSignalSpy back(stage.item(), SIGNAL(back()));
    stage.part("field")->forceActiveFocus();
    QTest::keyClick(&stage.window(), Qt::Key_Escape);
    EXPECT_EQ(back.count(), 1);
}

TEST(NavigationPage, AFormThatIsScrolledStaysBelowTheBar)
{
    ComponentStage stage(
        "NavigationPage { width: 350; height: 300; title: \"Sign up\"; FormPage { objectName: "
        "\"form\"; anchors.fill: parent; PrimaryButton { width: parent.width; title: \"Top\" } "
        "Item { width: 10; height: 600 } } }");
    QQuickItem *flickable = nullptr;
    for (auto *child : stage.part("form")->childItems())
        flickable = child->inherits("QQuickFlickable") ? child : flickable;
    ASSERT_TRUE(flickable);
    const QRect bar(20, 20, 350, 44);
    const QImage before = stage.shot().copy(bar);
    flickable->setProperty("contentY", 60);
    EXPECT_EQ(stage.shot().copy(bar), before);
}

TEST(NavigationPage, ShowsItsContentBelowTheBar)
{
    ComponentStage stage(page);
    const auto *fill = stage.part("fill");
    EXPECT_EQ(fill->mapRectToItem(stage.item(), fill->boundingRect()), QRectF(0, 44, 350, 256));
}

TEST(NavigationPage, LeavesALargeTitleRoom)
{
    ComponentStage stage(page);
    stage.theme().setTextScale(3);
    stage.shot();
    const auto title = stage.screen().find(QStringLiteral("Reset password"))->rect;
    const auto back = stage.screen().find(QStringLiteral("Back"))->rect;
    EXPECT_FALSE(title.intersects(back));
    const auto *fill = stage.part("fill");
    EXPECT_GE(fill->mapToItem(stage.item(), QPointF()).y(), title.height());
}

TEST(NavigationPage, ReachesTheWayBackFirstWithTheTabKey)
{
    ComponentStage stage(page);
    stage.item()->forceActiveFocus();
    QTest::keyClick(&stage.window(), Qt::Key_Tab);
    auto *first = stage.window().activeFocusItem();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->property("label").toString(), QStringLiteral("Back"));
}

} // namespace clockwell::test
