#include "ComponentStage.h"
#include "support/screen/TextIn.h"
#include "ui/Theme.h"

#include <QFont>

#include <gtest/gtest.h>

namespace clockwell::test {

namespace {

const QByteArray longError = "InlineError { message: \"The code you entered is not the one we sent. Ask for "
                             "a new code and enter it within ten "
                             "minutes, or write to your administrator.\" }";

} // namespace

TEST(InlineError, WrapsALongMessageInsteadOfCuttingIt)
{
    ComponentStage stage(longError);
    const auto *label = textIn(stage.item());
    EXPECT_GE(label->property("lineCount").toInt(), 2);
    EXPECT_FALSE(label->property("truncated").toBool());
    EXPECT_LE(label->property("contentWidth").toReal(), 350);
    EXPECT_GE(stage.item()->height(), label->property("contentHeight").toReal());
}

TEST(InlineError, BreaksAWordThatIsWiderThanTheLine)
{
    ComponentStage stage("InlineError { message: \"" + QByteArray(200, 'x') + "\" }");
    EXPECT_LE(textIn(stage.item())->property("contentWidth").toReal(), 350);
    EXPECT_FALSE(textIn(stage.item())->property("truncated").toBool());
}

TEST(InlineError, WrapsAtTwiceTheTextSize)
{
    ComponentStage stage(longError);
    const qreal before = stage.item()->height();
    stage.theme().setTextScale(2);
    stage.shot();
    EXPECT_GT(stage.item()->height(), 3 * before);
    EXPECT_FALSE(textIn(stage.item())->property("truncated").toBool());
}

TEST(InlineError, HasRegularTypeInTheDangerColor)
{
    ComponentStage stage(longError);
    const auto font = textIn(stage.item())->property("font").value<QFont>();
    EXPECT_EQ(font.pixelSize(), 13);
    EXPECT_EQ(font.weight(), QFont::Normal);
    EXPECT_EQ(textIn(stage.item())->property("color").value<QColor>(), QColor(255, 69, 58));
    EXPECT_EQ(stage.item()->width(), 350);
}

TEST(InlineError, IsAnnouncedAsAnAlert)
{
    ComponentStage stage("InlineError { message: \"Wrong code\" }");
    ASSERT_EQ(stage.screen().elements().size(), 1);
    EXPECT_EQ(stage.screen().elements().constFirst().name, QStringLiteral("Wrong code"));
    EXPECT_EQ(stage.screen().elements().constFirst().role, QAccessible::AlertMessage);
}

TEST(InlineError, ShowsMarkupAsItIsWritten)
{
    ComponentStage stage("InlineError { message: \"<b>bold</b> &amp;\" }");
    EXPECT_EQ(textIn(stage.item())->property("textFormat").toInt(), int(Qt::PlainText));
}

} // namespace clockwell::test
