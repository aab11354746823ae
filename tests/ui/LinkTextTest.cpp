#include "ComponentStage.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace clockwell::test {

namespace {

const QByteArray link = "LinkText { y: 40; text: \"Forgot password?\" }";

QPoint point(const ComponentStage &stage, qreal x, qreal y)
{
    return stage.item()->mapToScene(QPointF(x, y)).toPoint();
}

} // namespace

TEST(LinkText, IsALinkNamedByItsText)
{
    ComponentStage stage(link);
    ASSERT_EQ(stage.screen().elements().size(), 1);
    EXPECT_EQ(stage.screen().elements().constFirst().name, QStringLiteral("Forgot password?"));
    EXPECT_EQ(stage.screen().elements().constFirst().role, QAccessible::Link);
}

TEST(LinkText, IsDrawnAsSmallAsItsText)
{
    ComponentStage stage(link);
    EXPECT_LT(stage.item()->height(), 20);
}

TEST(LinkText, IsHitWithinFortyFourPoints)
{
    ComponentStage stage(link);
    QSignalSpy triggered(stage.item(), SIGNAL(triggered()));
    const qreal middle = stage.item()->height() / 2;
    const qreal x = stage.item()->width() / 2;
    int expected = 0;
    for (const qreal y : {middle - 21, middle, middle + 21}) {
        QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, point(stage, x, y));
        EXPECT_EQ(triggered.count(), ++expected) << y;
    }
    for (const qreal y : {middle - 24, middle + 24}) {
        QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, point(stage, x, y));
        EXPECT_EQ(triggered.count(), expected) << y;
    }
}

TEST(LinkText, ReactsToKeysAndAssistiveTechnology)
{
    ComponentStage stage(link);
    QSignalSpy triggered(stage.item(), SIGNAL(triggered()));
    QTest::keyClick(&stage.window(), Qt::Key_Tab);
    EXPECT_TRUE(stage.item()->hasActiveFocus());
    QTest::keyClick(&stage.window(), Qt::Key_Return);
    EXPECT_EQ(triggered.count(), 1);
    EXPECT_TRUE(stage.screen().press(QStringLiteral("Forgot password?")));
    EXPECT_EQ(triggered.count(), 2);
}

TEST(LinkText, ReactsToNothingWhileDisabled)
{
    ComponentStage stage("LinkText { y: 40; text: \"Resend\"; enabled: false }");
    QSignalSpy triggered(stage.item(), SIGNAL(triggered()));
    EXPECT_FALSE(stage.screen().isEnabled(QStringLiteral("Resend")));
    stage.screen().click(QStringLiteral("Resend"));
    stage.screen().press(QStringLiteral("Resend"));
    EXPECT_EQ(triggered.count(), 0);
}

TEST(LinkText, WrapsWhereItsTextDoesNotFit)
{
    ComponentStage stage("LinkText { width: 80; text: \"Enter verification code\" }");
    EXPECT_GT(stage.item()->height(), 30);
}

TEST(LinkText, ShowsAFocusRingForTheKeyboardOnly)
{
    ComponentStage stage(link);
    QTest::keyClick(&stage.window(), Qt::Key_Tab);
    EXPECT_TRUE(stage.part("ring")->isVisible());
    QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, point(stage, 5, 5));
    EXPECT_FALSE(stage.part("ring")->isVisible());
}

} // namespace clockwell::test
