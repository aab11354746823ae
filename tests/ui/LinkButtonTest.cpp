#include "ComponentStage.h"
#include "support/screen/TextIn.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace clockwell::test {

namespace {

const QByteArray link = "LinkButton { y: 40; text: \"Forgot password?\" }";

QPoint point(const ComponentStage &stage, qreal x, qreal y)
{
    return stage.item()->mapToScene(QPointF(x, y)).toPoint();
}

} // namespace

TEST(LinkButton, IsALinkNamedByItsText)
{
    ComponentStage stage(link);
    ASSERT_EQ(stage.screen().elements().size(), 1);
    EXPECT_EQ(stage.screen().elements().constFirst().name, QStringLiteral("Forgot password?"));
    EXPECT_EQ(stage.screen().elements().constFirst().role, QAccessible::Link);
}

TEST(LinkButton, StaysALinkWhenAssistiveTechnologyComes)
{
    ComponentStage stage(link);
    QAccessible::setActive(true); // to those who wait for it, like every button
    EXPECT_EQ(stage.screen().elements().constFirst().role, QAccessible::Link);
}

TEST(LinkButton, IsDrawnAsSmallAsItsText)
{
    ComponentStage stage(link);
    EXPECT_LT(stage.item()->height(), 20);
}

TEST(LinkButton, IsHitWithinFortyFourPoints)
{
    ComponentStage stage(link);
    QSignalSpy clicked(stage.item(), SIGNAL(clicked()));
    const qreal middle = stage.item()->height() / 2;
    const qreal x = stage.item()->width() / 2;
    int expected = 0;
    for (const qreal y : {middle - 21, middle, middle + 21}) {
        QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, point(stage, x, y));
        EXPECT_EQ(clicked.count(), ++expected) << y;
    }
    for (const qreal y : {middle - 24, middle + 24}) {
        QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, point(stage, x, y));
        EXPECT_EQ(clicked.count(), expected) << y;
    }
}

TEST(LinkButton, LeavesTheFieldAboveItAlone)
{
    ComponentStage stage("Item { property int taps: 0; QorField { id: field; objectName: \"field\"; "
                         "width: 300; label: \"Password\"; secure: true }"
                         "LinkButton { y: field.height + 10; text: \"Forgot password?\"; "
                         "onClicked: ++parent.taps } }");
    const QQuickItem *field = stage.part("field");
    const qreal bottom = field->height() - 1;
    for (const QPointF place : {QPointF(2, bottom - 12), QPointF(20, bottom), QPointF(80, bottom - 3)}) {
        stage.window().contentItem()->forceActiveFocus();
        QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, point(stage, place.x(), place.y()));
        EXPECT_EQ(stage.item()->property("taps").toInt(), 0) << place.x() << ", " << place.y();
        EXPECT_TRUE(inputIn(stage.part("field"))->hasActiveFocus()) << place.x() << ", " << place.y();
    }
    QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, point(stage, 20, bottom + 2));
    EXPECT_EQ(stage.item()->property("taps").toInt(), 1);
}

// A disabled item takes no press, so that what lies around it would.
TEST(LinkButton, LeavesADisabledButtonBelowItAlone)
{
    ComponentStage stage("Item { property int taps: 0; LinkButton { id: link; text: \"Forgot password?\"; "
                         "onClicked: ++parent.taps }"
                         "PrimaryButton { objectName: \"button\"; y: link.height + 6; width: 300; "
                         "title: \"Sign in\"; disabled: true } }");
    const qreal top = stage.part("button")->y();
    QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, point(stage, 40, top + 1));
    EXPECT_EQ(stage.item()->property("taps").toInt(), 0);
    QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, point(stage, 40, top - 2));
    EXPECT_EQ(stage.item()->property("taps").toInt(), 1);
}

TEST(LinkButton, ReactsToKeysAndAssistiveTechnology)
{
    ComponentStage stage(link);
    QSignalSpy clicked(stage.item(), SIGNAL(clicked()));
    QTest::keyClick(&stage.window(), Qt::Key_Tab);
    EXPECT_TRUE(stage.item()->hasActiveFocus());
    QTest::keyClick(&stage.window(), Qt::Key_Return);
    EXPECT_EQ(clicked.count(), 1);
    EXPECT_TRUE(stage.screen().press(QStringLiteral("Forgot password?")));
    EXPECT_EQ(clicked.count(), 2);
}

TEST(LinkButton, ReactsToNothingWhileDisabled)
{
    ComponentStage stage("LinkButton { y: 40; text: \"Resend\"; enabled: false }");
    QSignalSpy clicked(stage.item(), SIGNAL(clicked()));
    EXPECT_FALSE(stage.screen().isEnabled(QStringLiteral("Resend")));
    stage.screen().click(QStringLiteral("Resend"));
    stage.screen().press(QStringLiteral("Resend"));
    EXPECT_EQ(clicked.count(), 0);
}

TEST(LinkButton, WrapsWhereItsTextDoesNotFit)
{
    ComponentStage stage("LinkButton { width: 80; text: \"Enter verification code\" }");
    EXPECT_GT(stage.item()->height(), 30);
}

TEST(LinkButton, ShowsAFocusRingForTheKeyboardOnly)
{
    ComponentStage stage(link);
    QTest::keyClick(&stage.window(), Qt::Key_Tab);
    EXPECT_EQ(stage.colorAt(20, -3), QColor(39, 120, 245));
    QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, point(stage, 5, 5));
    EXPECT_EQ(stage.colorAt(20, -3), QColor(9, 21, 42));
}

} // namespace clockwell::test
