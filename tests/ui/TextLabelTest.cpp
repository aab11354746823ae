#include "ComponentStage.h"
#include "ui/Theme.h"

#include <QFont>

#include <gtest/gtest.h>

namespace clockwell::test {

namespace {

QFont fontOf(ComponentStage &stage)
{
    return stage.item()->property("font").value<QFont>();
}

} // namespace

TEST(TextLabel, IsReadAsItIsShown)
{
    ComponentStage stage("TextLabel { text: \"Good morning\" }");
    ASSERT_EQ(stage.screen().elements().size(), 1);
    EXPECT_EQ(stage.screen().elements().constFirst().name, QStringLiteral("Good morning"));
    EXPECT_EQ(stage.screen().elements().constFirst().role, QAccessible::StaticText);
    stage.item()->setProperty("text", QStringLiteral("Good evening"));
    EXPECT_EQ(stage.screen().texts(), QStringList(QStringLiteral("Good evening")));
}

TEST(TextLabel, IsNotReadWhileItIsHidden)
{
    ComponentStage stage("TextLabel { text: \"Good morning\"; visible: false }");
    EXPECT_TRUE(stage.screen().texts().isEmpty());
}

TEST(TextLabel, HasItsSizeInPointsTimesTheTextScale)
{
    ComponentStage stage("TextLabel { text: \"a\"; size: 13; weight: Font.DemiBold }");
    EXPECT_EQ(fontOf(stage).pixelSize(), 13);
    EXPECT_EQ(fontOf(stage).weight(), QFont::DemiBold);
    stage.theme().setTextScale(2);
    EXPECT_EQ(fontOf(stage).pixelSize(), 26);
    stage.theme().setTextScale(1.35);
    EXPECT_EQ(fontOf(stage).pixelSize(), 18);
}

TEST(TextLabel, IsInTheInterfaceFontUnlessMonospaced)
{
    ComponentStage stage("TextLabel { text: \"a\" }");
    EXPECT_EQ(fontOf(stage).family(), stage.theme().fontFamily());
    stage.item()->setProperty("monospaced", true);
    EXPECT_EQ(fontOf(stage).family(), stage.theme().monospacedFamily());
}

TEST(TextLabel, WrapsUnlessItIsToldToElide)
{
    ComponentStage stage("TextLabel { width: 100; text: \"A name that is much too long for one line\" }");
    EXPECT_GT(stage.item()->property("lineCount").toInt(), 1);
    EXPECT_FALSE(stage.item()->property("truncated").toBool());
    stage.item()->setProperty("maximumLineCount", 1);
    EXPECT_EQ(stage.item()->property("lineCount").toInt(), 1);
    EXPECT_TRUE(stage.item()->property("truncated").toBool());
}

TEST(TextLabel, NeverReadsMarkup)
{
    ComponentStage stage("TextLabel { text: \"<img src='file:///x'>\" }");
    EXPECT_EQ(stage.item()->property("textFormat").toInt(), int(Qt::PlainText));
}

TEST(TabularLabel, KeepsItsWidthWhenADigitChanges)
{
    ComponentStage stage("TabularLabel { text: \"1:11\"; size: 22 }");
    const qreal width = stage.item()->width();
    stage.item()->setProperty("text", QStringLiteral("0:48"));
    EXPECT_EQ(stage.item()->width(), width);
    EXPECT_GT(width, 0);
}

TEST(TabularLabel, IsReadAsOneText)
{
    ComponentStage stage("TabularLabel { text: \"37m\" }");
    ASSERT_EQ(stage.screen().elements().size(), 1);
    EXPECT_EQ(stage.screen().elements().constFirst().name, QStringLiteral("37m"));
    EXPECT_EQ(stage.screen().elements().constFirst().role, QAccessible::StaticText);
}

TEST(TabularLabel, GrowsWithTheTextScale)
{
    ComponentStage stage("TabularLabel { text: \"37m\"; size: 20 }");
    const qreal width = stage.item()->width();
    stage.theme().setTextScale(2);
    stage.shot();
    EXPECT_NEAR(stage.item()->width(), 2 * width, 2);
}

// Letters that join, marks that stand on others and words that run leftwards fall apart when each gets a
// cell.
TEST(TabularLabel, DrawsOtherScriptsAsTheyAreWritten)
{
    ComponentStage tabular("TabularLabel { text: \"1\" }");
    ComponentStage plain(
        "TextLabel { text: \"1\"; "
        "horizontalAlignment: Text.AlignLeft; wrapMode: Text.NoWrap; elide: Text.ElideNone }");
    for (const QString &text : {QStringLiteral("1:30 หลังเที่ยง"), QStringLiteral("١:٣٠ م"),
                                QStringLiteral("۱:۳۰ بعدازظهر"), QStringLiteral("1:30 अपराह्न")}) {
        tabular.item()->setProperty("text", text);
        plain.item()->setProperty("text", text);
        EXPECT_TRUE(tabular.shot() == plain.shot()) << text.toStdString();
    }
}

} // namespace clockwell::test
