#include "ui/RevealWhenShown.h"

#include "ComponentStage.h"

#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace clockwell::test {
namespace {

class RevealWhenShownTest : public ::testing::Test
{
protected:
    RevealWhenShownTest() { list = stage.part("list"); }

    void fail(const QString &message)
    {
        stage.item()->setProperty("failed", !message.isEmpty());
        stage.item()->setProperty("message", message);
        QTest::qWait(100); // some frames
    }
    qreal scrolled() const { return list->property("contentY").toReal(); }
    void scrollTo(qreal y) { list->setProperty("contentY", y); }
    bool isInView() const
    {
        const auto *error = stage.part("error");
        const qreal top = error->mapToItem(list, QPointF()).y();
        return top >= 0 && top + error->height() <= list->height();
    }

    ComponentStage stage{R"(Item {
        id: page
        property bool failed: false
        property string message: ""
        width: 300; height: 200
        Flickable {
            objectName: "list"
            anchors.fill: parent
            contentHeight: column.height
            Column {
                id: column
                width: 300
                PrimaryButton { objectName: "first"; width: 300; title: "First" }
                Item { width: 10; height: 300 }
                Item {
                    width: 300; height: error.height
                    visible: page.failed
                    InlineError { id: error; objectName: "error"; width: 300; message: page.message }
                }
                Item { width: 10; height: 300 }
            }
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
    scrollTo(220);
    fail(u"No."_s);
    EXPECT_EQ(scrolled(), 220);
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

} // namespace
} // namespace clockwell::test
