#include "EditMenuStage.h"

#include <QInputMethodEvent>

using namespace Qt::StringLiterals;

namespace clockwell::test {
namespace {

const auto paste = u"Paste"_s;

/// Every test begins with an open menu.
class EditMenuClosingTest : public EditMenuStage
{
protected:
    void SetUp() override
    {
        setText(u"hello"_s);
        open();
    }

    void open()
    {
        longPress(at());
        ASSERT_TRUE(isOpen());
    }

    QPoint middleOf(const char *part) const
    {
        const auto *item = stage.part(part);
        return item->mapToScene(QPointF(item->width(), item->height()) / 2).toPoint();
    }
};

TEST_F(EditMenuClosingTest, ByATapAnywhereElse)
{
    for (const QPoint place : {QPoint(5, 395), QPoint(5, 5), at(1)}) {
        tap(place);
        EXPECT_FALSE(isOpen()) << place.x() << ',' << place.y();
        open();
        click(place);
        EXPECT_FALSE(isOpen()) << place.x() << ',' << place.y();
        open();
    }
}

TEST_F(EditMenuClosingTest, ByATapOnAControlWhichHearsIt)
{
    tap(middleOf("below"));
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(count("taps"), 1);
}

TEST_F(EditMenuClosingTest, ByASecondFinger)
{
    QTest::touchEvent(&stage.window(), finger).press(0, entry(paste));
    EXPECT_TRUE(isOpen());
    QTest::touchEvent(&stage.window(), finger).stationary(0).press(1, QPoint(5, 395));
    EXPECT_FALSE(isOpen());
    QTest::touchEvent(&stage.window(), finger).release(0, QPoint(5, 395)).release(1, QPoint(5, 395));
    EXPECT_EQ(text(), u"hello"_s);
}

TEST_F(EditMenuClosingTest, NotByAPressOnItThatLeadsNowhere)
{
    touch(entry(paste));
    drag(menu().center() + QPoint(0, 150));
    lift(menu().center() + QPoint(0, 150));
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(text(), u"hello"_s);
    click(entry(paste), Qt::RightButton);
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(text(), u"hello"_s);
}

TEST_F(EditMenuClosingTest, ByEscapeWhichGoesNoFurther)
{
    key(Qt::Key_Escape);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(count("escapes"), 0);
    EXPECT_TRUE(input()->hasActiveFocus());
    key(Qt::Key_Escape); // and the next one is the screen's again
    EXPECT_EQ(count("escapes"), 1);
}

TEST_F(EditMenuClosingTest, ByThePlatformsBackKeyWhichGoesNoFurther)
{
    key(Qt::Key_Back);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(count("escapes"), 0);
}

TEST_F(EditMenuClosingTest, ByTheMenuKeyOnceMore)
{
    key(Qt::Key_Menu);
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuClosingTest, ByTypingWhichIsTyped)
{
    key(Qt::Key_X);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(text(), u"hellox"_s);
}

TEST_F(EditMenuClosingTest, ByTypingOnTheScreensKeyboard)
{
    QInputMethodEvent typed;
    typed.setCommitString(u"y"_s);
    QGuiApplication::sendEvent(input(), &typed);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(text(), u"helloy"_s);
    open();
    QInputMethodEvent composing(u"z"_s, {});
    QGuiApplication::sendEvent(input(), &composing);
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuClosingTest, ByAnEditingKeyWhichEdits)
{
    key(Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(selected(), u"o"_s);
}

TEST_F(EditMenuClosingTest, NotByAModifierAlone)
{
    QTest::keyPress(&stage.window(), Qt::Key_Shift);
    EXPECT_TRUE(isOpen());
    QTest::keyRelease(&stage.window(), Qt::Key_Shift);
}

TEST_F(EditMenuClosingTest, ByTheWheel)
{
    const QPoint place(200, 350);
    QWheelEvent wheel(place, stage.window().mapToGlobal(place), {}, QPoint(0, -120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QGuiApplication::sendEvent(&stage.window(), &wheel);
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuClosingTest, WhenTheFieldLosesTheFocus)
{
    stage.part("other")->forceActiveFocus();
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuClosingTest, WhenTheWindowLosesTheFocus)
{
    QQuickView another;
    another.show();
    another.requestActivate();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&another));
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuClosingTest, WhenTheFieldIsHidden)
{
    stage.item()->setVisible(false);
    stage.item()->setVisible(true);
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuClosingTest, WhenTheFieldIsDisabled)
{
    field()->setEnabled(false);
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuClosingTest, WhenTheFieldIsDestroyed)
{
    delete field();
    settle();
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(stage.screen().texts(), QStringList({u"Other"_s, u"Below"_s}));
    tap(QPoint(5, 5));
    key(Qt::Key_X);
}

TEST_F(EditMenuClosingTest, WhenTheWindowIsTurned)
{
    stage.window().resize(600, 390);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !isOpen(); }));
}

TEST_F(EditMenuClosingTest, WhenAnEntryIsChosenThatTakesTheFieldAway)
{
    QObject::connect(stage.item(), SIGNAL(editsChanged()), field(), SLOT(deleteLater()));
    tap(entry(paste));
    EXPECT_TRUE(QTest::qWaitFor([this] { return !stage.item()->findChild<QObject *>(u"field"_s); }));
    EXPECT_FALSE(isOpen());
}

TEST_F(EditMenuClosingTest, AndLeavesRoomForTheNext)
{
    for (int time = 0; time < 3; ++time) {
        click(at(), Qt::RightButton);
        EXPECT_EQ(menus().size(), 1);
    }
    const QPoint other = middleOf("other");
    click(other, Qt::RightButton);
    EXPECT_EQ(menus().size(), 1);
    EXPECT_EQ(offered(), QStringList(paste));
}

} // namespace
} // namespace clockwell::test
