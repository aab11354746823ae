#include "ComponentStage.h"
#include "ui/Theme.h"

#include <QFont>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace clockwell::test {

namespace {

const QColor brand(39, 120, 245);
const QColor background(9, 21, 42);
const auto title = QStringLiteral("Sign in");

QByteArray button(const QByteArray &more = {})
{
    return "PrimaryButton { title: \"Sign in\"; " + more + " }";
}

void expectHalf(QColor color)
{
    EXPECT_NEAR(color.red(), (brand.red() + background.red()) / 2.0, 1);
    EXPECT_NEAR(color.green(), (brand.green() + background.green()) / 2.0, 1);
    EXPECT_NEAR(color.blue(), (brand.blue() + background.blue()) / 2.0, 1);
}

/// Finger, keys and assistive technology, one after the other.
void pressInEveryWay(ComponentStage &stage)
{
    QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, QPoint(195, 44));
    stage.item()->forceActiveFocus(Qt::TabFocusReason);
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter})
        QTest::keyClick(&stage.window(), key);
    stage.screen().press(title);
}

} // namespace

TEST(PrimaryButton, CallsItsActionForEveryKindOfPress)
{
    ComponentStage stage(button());
    QSignalSpy clicked(stage.item(), SIGNAL(clicked()));
    pressInEveryWay(stage);
    EXPECT_EQ(clicked.count(), 5);
}

TEST(PrimaryButton, IgnoresEveryPressWhileLoading)
{
    ComponentStage stage(button("loading: true"));
    QSignalSpy clicked(stage.item(), SIGNAL(clicked()));
    pressInEveryWay(stage);
    EXPECT_EQ(clicked.count(), 0);
}

TEST(PrimaryButton, IgnoresEveryPressWhileDisabled)
{
    ComponentStage stage(button("disabled: true"));
    QSignalSpy clicked(stage.item(), SIGNAL(clicked()));
    pressInEveryWay(stage);
    EXPECT_EQ(clicked.count(), 0);
}

TEST(PrimaryButton, ShowsASpinnerAndNoTitleWhileLoading)
{
    ComponentStage stage(button("loading: true"));
    expectHalf(stage.colorAt(20, 25));
    EXPECT_FALSE(stage.shownText(title));
    const QRect white = stage.areaOf(Qt::white);
    EXPECT_FALSE(white.isEmpty());
    EXPECT_TRUE(QRect(175 - 10, 0, 20, qRound(stage.item()->height())).contains(white));
}

TEST(PrimaryButton, IsHalfTransparentWithItsTitleWhileDisabled)
{
    ComponentStage stage(button("disabled: true"));
    EXPECT_GT(stage.areaOf(Qt::white).width(), 50);
    EXPECT_TRUE(stage.shownText(title));
    expectHalf(stage.colorAt(20, 25));
}

TEST(PrimaryButton, IsFilledWithTheBrandColorByDefault)
{
    ComponentStage stage(button());
    EXPECT_EQ(stage.colorAt(20, 25), brand);
}

TEST(PrimaryButton, TakesAnotherColor)
{
    ComponentStage stage(button("color: Theme.success"));
    EXPECT_EQ(stage.colorAt(20, 25), QColor(52, 199, 89));
}

TEST(PrimaryButton, PadsItsTitleByFourteenPointsAboveAndBelow)
{
    ComponentStage stage(button());
    const auto *label = stage.shownText(title);
    ASSERT_TRUE(label);
    EXPECT_EQ(label->mapToItem(stage.item(), QPointF()).y(), 14);
    EXPECT_EQ(stage.item()->height(), label->height() + 28);
    EXPECT_GE(stage.item()->height(), 44);
    EXPECT_EQ(label->property("font").value<QFont>().weight(), QFont::DemiBold);
    EXPECT_EQ(label->property("color").value<QColor>(), QColor(Qt::white));
}

TEST(PrimaryButton, FillsTheWidthItStandsInAndCentersItsTitle)
{
    ComponentStage stage(button());
    EXPECT_EQ(stage.item()->width(), 350);
    const QRect white = stage.areaOf(Qt::white);
    EXPECT_NEAR(white.left() + white.width() / 2.0, 175, 1);
}

TEST(PrimaryButton, HasCornersOfTwelvePoints)
{
    ComponentStage stage(button());
    EXPECT_EQ(stage.colorAt(1, 1), background);
    EXPECT_EQ(stage.colorAt(5, 5), brand);
}

TEST(PrimaryButton, KeepsItsSizeWhileLoading)
{
    ComponentStage stage(button());
    const QSizeF size = stage.item()->size();
    stage.item()->setProperty("loading", true);
    EXPECT_EQ(stage.item()->size(), size);
}

TEST(PrimaryButton, KeepsItsNameAndReportsItselfDisabledWhileLoading)
{
    ComponentStage stage(button());
    EXPECT_TRUE(stage.screen().isEnabled(title));
    stage.item()->setProperty("loading", true);
    ASSERT_TRUE(stage.screen().shows(title));
    EXPECT_FALSE(stage.screen().isEnabled(title));
    EXPECT_EQ(stage.screen().texts(), QStringList(title));
    EXPECT_EQ(stage.screen().find(title)->role, QAccessible::Button);
}

TEST(PrimaryButton, GetsTheKeyboardBackAfterLoading)
{
    ComponentStage stage(button());
    stage.item()->forceActiveFocus(Qt::TabFocusReason);
    stage.item()->setProperty("loading", true);
    stage.item()->setProperty("loading", false);
    EXPECT_TRUE(stage.item()->hasActiveFocus());
}

TEST(PrimaryButton, IgnoresARepeatedKey)
{
    ComponentStage stage(button());
    QSignalSpy clicked(stage.item(), SIGNAL(clicked()));
    stage.item()->forceActiveFocus(Qt::TabFocusReason);
    int expected = 0;
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        const auto send = [&](QEvent::Type type, bool repeated) {
            QKeyEvent event(type, key, {}, {}, repeated);
            QCoreApplication::sendEvent(&stage.window(), &event);
        };
        send(QEvent::KeyPress, false);
        for (int i = 0; i < 3; ++i) { // as X11 says that a key is held
            send(QEvent::KeyRelease, true);
            send(QEvent::KeyPress, true);
        }
        send(QEvent::KeyRelease, false);
        EXPECT_EQ(clicked.count(), ++expected) << key;
    }
}

TEST(PrimaryButton, ForgetsAPressThatLeavesIt)
{
    ComponentStage stage(button());
    QSignalSpy clicked(stage.item(), SIGNAL(clicked()));
    QTest::mousePress(&stage.window(), Qt::LeftButton, {}, QPoint(195, 44));
    EXPECT_TRUE(stage.item()->property("pressed").toBool());
    QTest::mouseMove(&stage.window(), QPoint(195, 300));
    EXPECT_FALSE(stage.item()->property("pressed").toBool());
    QTest::mouseRelease(&stage.window(), Qt::LeftButton, {}, QPoint(195, 300));
    EXPECT_EQ(clicked.count(), 0);
}

TEST(PrimaryButton, ForgetsAPressDuringWhichItIsDisabled)
{
    ComponentStage stage(button());
    QSignalSpy clicked(stage.item(), SIGNAL(clicked()));
    QTest::mousePress(&stage.window(), Qt::LeftButton, {}, QPoint(195, 44));
    stage.item()->setProperty("loading", true);
    QTest::mouseRelease(&stage.window(), Qt::LeftButton, {}, QPoint(195, 44));
    EXPECT_EQ(clicked.count(), 0);
    EXPECT_FALSE(stage.item()->property("pressed").toBool());
}

TEST(PrimaryButton, IgnoresTheOtherMouseButtons)
{
    ComponentStage stage(button());
    QSignalSpy clicked(stage.item(), SIGNAL(clicked()));
    QTest::mouseClick(&stage.window(), Qt::RightButton, {}, QPoint(195, 44));
    QTest::mouseClick(&stage.window(), Qt::MiddleButton, {}, QPoint(195, 44));
    EXPECT_EQ(clicked.count(), 0);
}

TEST(PrimaryButton, TakesASecondTapHoweverQuick)
{
    ComponentStage stage(button());
    QSignalSpy clicked(stage.item(), SIGNAL(clicked()));
    QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, QPoint(195, 44));
    QTest::mouseDClick(&stage.window(), Qt::LeftButton, {}, QPoint(195, 44));
    EXPECT_EQ(clicked.count(), 3);
}

TEST(PrimaryButton, ReactsToAFinger)
{
    ComponentStage stage(button());
    QSignalSpy clicked(stage.item(), SIGNAL(clicked()));
    QPointingDevice *screen = QTest::createTouchDevice();
    QTest::touchEvent(&stage.window(), screen).press(0, QPoint(195, 44));
    QTest::touchEvent(&stage.window(), screen).release(0, QPoint(195, 44));
    EXPECT_EQ(clicked.count(), 1);
}

TEST(PrimaryButton, LeavesAScrollToTheList)
{
    ComponentStage stage(
        "Flickable { width: 350; height: 300; contentHeight: 900; "
        "PrimaryButton { objectName: \"button\"; width: 350; y: 100; title: \"Sign in\" } }");
    QSignalSpy clicked(stage.part("button"), SIGNAL(clicked()));
    QPointingDevice *screen = QTest::createTouchDevice();
    QTest::touchEvent(&stage.window(), screen).press(0, QPoint(195, 140));
    for (int y = 130; y >= 60; y -= 10) {
        QTest::qWait(10);
        QTest::touchEvent(&stage.window(), screen).move(0, QPoint(195, y));
    }
    QTest::touchEvent(&stage.window(), screen).release(0, QPoint(195, 60));
    EXPECT_EQ(clicked.count(), 0);
    EXPECT_GT(stage.item()->property("contentY").toReal(), 20);
    EXPECT_FALSE(stage.part("button")->property("pressed").toBool());
}

TEST(PrimaryButton, ShowsAFocusRingForTheKeyboardOnly)
{
    ComponentStage stage(button());
    QTest::keyClick(&stage.window(), Qt::Key_Tab);
    EXPECT_TRUE(stage.item()->hasActiveFocus());
    EXPECT_EQ(stage.colorAt(175, -3), brand);
    EXPECT_EQ(stage.colorAt(175, -1), background);
    QTest::keyClick(&stage.window(), Qt::Key_Space);
    EXPECT_EQ(stage.colorAt(175, -3), brand);
    QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, QPoint(195, 44));
    EXPECT_EQ(stage.colorAt(175, -3), background);
}

TEST(PrimaryButton, LeavesTheFocusWhereItIsWhenTapped)
{
    ComponentStage stage("Column { width: 350; QorField { objectName: \"field\"; label: \"Email\" } "
                         "PrimaryButton { objectName: \"button\"; title: \"Sign in\" } }");
    stage.part("field")->forceActiveFocus();
    const QQuickItem *focused = stage.window().activeFocusItem();
    QSignalSpy clicked(stage.part("button"), SIGNAL(clicked()));
    EXPECT_TRUE(stage.screen().click(title));
    QPointingDevice *screen = QTest::createTouchDevice();
    const QPoint middle = stage.screen().find(title)->rect.center();
    QTest::touchEvent(&stage.window(), screen).press(0, middle);
    QTest::touchEvent(&stage.window(), screen).release(0, middle);
    EXPECT_EQ(clicked.count(), 2);
    EXPECT_EQ(stage.window().activeFocusItem(), focused);
}

TEST(PrimaryButton, HasTheHandOfALink)
{
    ComponentStage stage(button());
    QTest::mouseMove(&stage.window(), QPoint(195, 44));
    EXPECT_TRUE(QTest::qWaitFor([&] { return stage.window().cursor().shape() == Qt::PointingHandCursor; }));
    QTest::mouseMove(&stage.window(), QPoint(195, 300));
    EXPECT_TRUE(QTest::qWaitFor([&] { return stage.window().cursor().shape() == Qt::ArrowCursor; }));
}

TEST(PrimaryButton, WrapsItsTitleAtLargeText)
{
    ComponentStage stage("PrimaryButton { width: 200; title: \"Create an account\" }");
    stage.theme().setTextScale(2);
    stage.shot();
    const auto *label = stage.shownText(QStringLiteral("Create an account"));
    ASSERT_TRUE(label);
    EXPECT_GE(label->property("lineCount").toInt(), 2);
    EXPECT_FALSE(label->property("truncated").toBool());
    EXPECT_EQ(stage.item()->height(), label->height() + 28);
}

} // namespace clockwell::test
