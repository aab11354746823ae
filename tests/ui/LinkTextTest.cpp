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

TEST(LinkText, LeavesTheFieldAboveItAlone)
{
    ComponentStage stage("Item { property int taps: 0; QorField { id: field; objectName: \"field\"; "
                         "width: 300; label: \"Password\"; secure: true }"
                         "LinkText { y: field.height + 10; text: \"Forgot password?\"; "
                         "onTriggered: ++parent.taps } }");
    const QQuickItem *field = stage.part("field");
    const qreal bottom = field->height() - 1;
    for (const QPointF place : {QPointF(2, bottom - 12), QPointF(20, bottom), QPointF(80, bottom - 3)}) {
        stage.window().contentItem()->forceActiveFocus();
        QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, point(stage, place.x(), place.y()));
        EXPECT_EQ(stage.item()->property("taps").toInt(), 0) << place.x() << ", " << place.y();
        EXPECT_TRUE(stage.part("input")->hasActiveFocus()) << place.x() << ", " << place.y();
    }
    QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, point(stage, 20, bottom + 2));
    EXPECT_EQ(stage.item()->property("taps").toInt(), 1);
}

// A disabled item takes no press, so that what lies around it would.
TEST(LinkText, LeavesADisabledButtonBelowItAlone)
{
    ComponentStage stage("Item { property int taps: 0; LinkText { id: link; text: \"Forgot password?\"; "
                         "onTriggered: ++parent.taps }"
                         "PrimaryButton { objectName: \"button\"; y: link.height + 6; width: 300; "
                         "title: \"Sign in\"; disabled: true } }");
    const qreal top = stage.part("button")->y();
    QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, point(stage, 40, top + 1));
    EXPECT_EQ(stage.item()->property("taps").toInt(), 0);
    QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, point(stage, 40, top - 2));
    EXPECT_EQ(stage.item()->property("taps").toInt(), 1);
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
