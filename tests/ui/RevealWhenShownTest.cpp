#include "ComponentStage.h"

#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace clockwell::test {
namespace {

class RevealWhenShownTest : public ::testing::Test
{
protected:
    RevealWhenShownTest()
    {
        const auto items = stage.item()->findChildren<QQuickItem *>();
        list = *std::ranges::find_if(
            items, [](const QQuickItem *item) { return item->inherits("QQuickFlickable"); });
    }

    void fail(const QString &message)
    {
        stage.item()->setProperty("failed", !message.isEmpty());
        stage.item()->setProperty("message", message);
        QTest::qWait(100); // some frames
    }
    qreal scrolled() const { return list->property("contentY").toReal(); }
    void scrollTo(qreal y) { list->setProperty("contentY", y); }
    bool isInView(const char *part = "error") const
    {
        const auto *item = stage.part(part);
        const qreal top = item->mapToItem(list, QPointF()).y();
        return top >= 0 && top + item->height() <= list->height();
    }

    ComponentStage stage{R"(Item {
        id: page
        property bool failed: false
        property string message: ""
        width: 300; height: 200
        FormPage {
            anchors.fill: parent
            PrimaryButton { objectName: "first"; width: 300; title: "First" }
            Item { width: 10; height: 300 }
            Item {
                width: 300; height: error.height
                visible: page.failed
                InlineError { id: error; objectName: "error"; width: 300; message: page.message }
            }
            Item { width: 10; height: 300 }
            PrimaryButton { objectName: "last"; width: 300; title: "Last" }
        }
    })"};
    QQuickItem *list = nullptr;
};

TEST_F(RevealWhenShownTest, AMessageBelowTheFoldComesIntoViewAndTheFocusStays)
{
    stage.part("first")->forceActiveFocus();
    fail(u"No."_s);
    EXPECT_TRUE(isInView());
    EXPECT_GT(scrolled(), 0);
    EXPECT_TRUE(stage.part("first")->hasActiveFocus());
}

TEST_F(RevealWhenShownTest, AMessageThatIsInViewMovesNothing)
{
    scrollTo(300);
    fail(u"No."_s);
    EXPECT_EQ(scrolled(), 300);
}

TEST_F(RevealWhenShownTest, AMessageAboveTheViewComesDown)
{
    scrollTo(450);
    fail(u"No."_s);
    EXPECT_TRUE(isInView());
}

TEST_F(RevealWhenShownTest, TheSameMessageAgainIsRevealedAgain)
{
    fail(u"No."_s);
    scrollTo(0);
    fail(QString());
    fail(u"No."_s);
    EXPECT_TRUE(isInView());
}

TEST_F(RevealWhenShownTest, AnotherMessageInItsPlaceIsRevealed)
{
    fail(u"No."_s);
    scrollTo(0);
    fail(u"No again."_s);
    EXPECT_TRUE(isInView());
}

TEST_F(RevealWhenShownTest, AnOldMessageThatIsUncoveredMovesNothing)
{
    fail(u"No."_s);
    scrollTo(0);
    stage.item()->setVisible(false);
    stage.item()->setVisible(true);
    QTest::qWait(100);
    EXPECT_EQ(scrolled(), 0);
}

TEST_F(RevealWhenShownTest, WhatGetsTheFocusComesIntoViewByTheLeastAmount)
{
    stage.screen().key(Qt::Key_Tab);
    EXPECT_TRUE(stage.part("first")->hasActiveFocus());
    EXPECT_EQ(scrolled(), 0);
    stage.screen().key(Qt::Key_Tab);
    EXPECT_TRUE(stage.part("last")->hasActiveFocus());
    EXPECT_TRUE(isInView("last"));
    EXPECT_FALSE(isInView("first"));
    stage.screen().key(Qt::Key_Tab, Qt::ShiftModifier);
    EXPECT_TRUE(isInView("first"));
}

TEST_F(RevealWhenShownTest, WhatHasTheFocusStaysInViewWhenTheViewShrinks)
{
    stage.item()->setHeight(900);
    stage.part("last")->forceActiveFocus();
    EXPECT_EQ(scrolled(), 0);
    stage.item()->setHeight(200);
    EXPECT_TRUE(isInView("last"));
    scrollTo(0); // by hand
    EXPECT_EQ(scrolled(), 0);
}

} // namespace
} // namespace clockwell::test
