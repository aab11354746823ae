#include "ComponentStage.h"
#include "StackDriver.h"
#include "ui/Theme.h"

#include <QPointer>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace clockwell::test {

namespace {

const QByteArray stackQml = StackDriver::qml(
    "width: 350; height: 300; "
    "initialItem: PrimaryButton { property int taps: 0; title: \"First\"; onClicked: ++taps }");

} // namespace

class NavigationStackTest : public ::testing::Test
{
protected:
    QUrl file(const char *name, const QByteArray &qml)
    {
        return writeScreen(m_files.filePath(QString::fromLatin1(name)), qml);
    }
    QUrl page()
    {
        return file("Page.qml", "NavigationPage { required property int number; title: \"Page \" + number }");
    }

    void push(int number) { stack.push(page(), {{QStringLiteral("number"), number}}); }
    bool settled() const
    {
        return QTest::qWaitFor([this] { return !stack.isMoving(); });
    }
    bool shows(const char *text) { return stage.screen().shows(QString::fromLatin1(text)); }

    QTemporaryDir m_files;
    ComponentStage stage{stackQml};
    StackDriver stack{stage.item()};
};

TEST_F(NavigationStackTest, BeginsWithItsInitialItemInItsOwnSize)
{
    ASSERT_TRUE(stage.item());
    EXPECT_EQ(stack.depth(), 1);
    EXPECT_TRUE(shows("First"));
    EXPECT_EQ(stack.currentItem()->size(), QSizeF(350, 300));
}

TEST_F(NavigationStackTest, PushedScreensSlideInAndHideTheOneBelow)
{
    QQuickItem *first = stack.currentItem();
    push(2);
    EXPECT_TRUE(stack.isMoving());
    EXPECT_EQ(stack.currentItem()->x(), 350);
    ASSERT_TRUE(settled());
    EXPECT_EQ(stack.currentItem()->x(), 0);
    EXPECT_TRUE(shows("Page 2"));
    EXPECT_FALSE(first->isVisible());
    EXPECT_FALSE(shows("First"));
    EXPECT_EQ(stack.depth(), 2);
}

TEST_F(NavigationStackTest, TheBackSignalPopsAndDeletes)
{
    push(2);
    ASSERT_TRUE(settled());
    const QPointer<QQuickItem> pushed = stack.currentItem();
    ASSERT_TRUE(stage.screen().click(QStringLiteral("Back")));
    EXPECT_TRUE(shows("First")); // already while it slides away
    ASSERT_TRUE(settled());
    EXPECT_TRUE(QTest::qWaitFor([&] { return pushed.isNull(); }));
    EXPECT_EQ(stack.depth(), 1);
    EXPECT_EQ(stack.currentItem()->x(), 0);
}

TEST_F(NavigationStackTest, TheLastScreenStays)
{
    stack.pop();
    EXPECT_EQ(stack.depth(), 1);
    EXPECT_TRUE(shows("First"));
}

TEST_F(NavigationStackTest, TapsAreNotTakenWhileScreensChangePlaces)
{
    QQuickItem *first = stack.currentItem();
    push(2);
    QTest::mouseClick(&stage.window(), Qt::LeftButton, Qt::NoModifier, QPoint(100, 100));
    EXPECT_EQ(first->property("taps").toInt(), 0);
    ASSERT_TRUE(settled());
    stack.pop();
    ASSERT_TRUE(settled());
    QTest::mouseClick(&stage.window(), Qt::LeftButton, Qt::NoModifier, QPoint(100, 100));
    EXPECT_EQ(first->property("taps").toInt(), 1);
}

TEST_F(NavigationStackTest, AChangeInTheMiddleOfAnotherEndsTheFirst)
{
    push(2);
    QQuickItem *second = stack.currentItem();
    push(3);
    EXPECT_EQ(second->x(), 0);
    ASSERT_TRUE(settled());
    EXPECT_FALSE(second->isVisible());
    EXPECT_EQ(stack.depth(), 3);
    stack.pop();
    stack.pop();
    ASSERT_TRUE(settled());
    EXPECT_EQ(stack.depth(), 1);
    EXPECT_TRUE(shows("First"));
}

TEST_F(NavigationStackTest, ReplacingFadesInAndDeletesEverythingBelow)
{
    push(2);
    ASSERT_TRUE(settled());
    const QPointer<QQuickItem> second = stack.currentItem();
    stack.replace(page(), {{QStringLiteral("number"), 3}}, true);
    EXPECT_EQ(stack.currentItem()->opacity(), 0);
    ASSERT_TRUE(settled());
    EXPECT_EQ(stack.currentItem()->opacity(), 1);
    EXPECT_TRUE(shows("Page 3"));
    EXPECT_FALSE(shows("Page 2"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return second.isNull(); }));
    EXPECT_EQ(stack.depth(), 1);
}

TEST_F(NavigationStackTest, ReplacingWithoutAnimationIsDoneAtOnce)
{
    stack.replace(page(), {{QStringLiteral("number"), 3}}, false);
    EXPECT_FALSE(stack.isMoving());
    EXPECT_TRUE(shows("Page 3"));
    EXPECT_FALSE(shows("First"));
}

TEST_F(NavigationStackTest, ReducedMotionChangesAtOnce)
{
    stage.theme().setReducedMotion(true);
    push(2);
    EXPECT_FALSE(stack.isMoving());
    EXPECT_TRUE(shows("Page 2"));
    EXPECT_FALSE(shows("First"));
}

TEST_F(NavigationStackTest, AFileThatCannotBeLoadedLeavesEverythingAsItIs)
{
    stack.push(file("Broken.qml", "Nothing { }"));
    stack.push(QUrl::fromLocalFile(m_files.filePath(QStringLiteral("Absent.qml"))));
    stack.push(page()); // without its required property
    EXPECT_FALSE(stack.isMoving());
    EXPECT_TRUE(shows("First"));
    push(2);
    ASSERT_TRUE(settled());
    stage.screen().key(Qt::Key_Escape);
    ASSERT_TRUE(settled());
    EXPECT_TRUE(shows("First"));
}

TEST_F(NavigationStackTest, AFileThatCannotBeLoadedLeavesTheWayBackAsItIs)
{
    push(2);
    ASSERT_TRUE(settled());
    stack.push(file("Broken.qml", "Nothing { }"));
    EXPECT_TRUE(shows("Page 2"));
    ASSERT_TRUE(stage.screen().click(QStringLiteral("Back")));
    ASSERT_TRUE(settled());
    EXPECT_TRUE(shows("First"));
}

TEST_F(NavigationStackTest, ThePushedScreenHasTheFocus)
{
    push(2);
    ASSERT_TRUE(settled());
    stage.screen().key(Qt::Key_Escape);
    ASSERT_TRUE(settled());
    EXPECT_EQ(stack.depth(), 1);
}

TEST_F(NavigationStackTest, TheFocusReturnsToWhereItWas)
{
    const QUrl form = file("Form.qml", "NavigationPage { title: \"Form\"; Column { "
                                       "QorField { label: \"Name\"; width: 200 } "
                                       "QorField { label: \"Town\"; width: 200 } } }");
    stack.push(form);
    ASSERT_TRUE(settled());
    ASSERT_TRUE(stage.screen().click(QStringLiteral("Town")));
    const QQuickItem *town = stage.window().activeFocusItem();
    push(3);
    EXPECT_NE(stage.window().activeFocusItem(), town);
    ASSERT_TRUE(settled());
    stage.screen().key(Qt::Key_Escape);
    EXPECT_EQ(stage.window().activeFocusItem(), town);
    ASSERT_TRUE(settled());
    EXPECT_EQ(stage.window().activeFocusItem(), town);
    EXPECT_TRUE(shows("Town"));
}

TEST_F(NavigationStackTest, WhatLiesBelowIsNeitherReadNorReachedByTheTabKey)
{
    push(2);
    push(3);
    ASSERT_TRUE(settled());
    EXPECT_FALSE(shows("First"));
    EXPECT_FALSE(shows("Page 2"));
    for (int tabs = 0; tabs < 5; ++tabs) {
        stage.screen().key(Qt::Key_Tab);
        EXPECT_TRUE(stack.currentItem()->hasActiveFocus()) << tabs; // it or what is in it
    }
}

// Both are to be seen meanwhile, so that the Tab key would find what is in either.
TEST_F(NavigationStackTest, TheKeyboardStaysInTheScreenOnTopWhileTheyChangePlaces)
{
    QQuickItem *first = stack.currentItem();
    for (int tabs = 1; tabs <= 3; ++tabs) {
        push(2);
        for (int i = 0; i < tabs; ++i)
            stage.screen().key(Qt::Key_Tab);
        EXPECT_TRUE(stack.currentItem()->hasActiveFocus()); // it or what is in it
        ASSERT_TRUE(settled());
        stage.screen().key(Qt::Key_Escape);
        EXPECT_EQ(stack.depth(), 1) << tabs << " tabs";
        stage.screen().key(Qt::Key_Tab);
        EXPECT_TRUE(first->hasActiveFocus());
        ASSERT_TRUE(settled());
        if (stack.depth() > 1)
            stack.pop();
        ASSERT_TRUE(settled());
    }
}

TEST_F(NavigationStackTest, EveryScreenFollowsTheSize)
{
    QQuickItem *first = stack.currentItem();
    push(2);
    ASSERT_TRUE(settled());
    stack.item()->setSize(QSizeF(200, 250));
    EXPECT_EQ(first->size(), QSizeF(200, 250));
    EXPECT_EQ(stack.currentItem()->size(), QSizeF(200, 250));
}

TEST_F(NavigationStackTest, GoingAwayInTheMiddleOfAChangeIsHarmless)
{
    push(2);
    delete stack.item();
    QTest::qWait(250);
}

} // namespace clockwell::test
