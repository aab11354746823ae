#include "ComponentStage.h"
#include "support/screen/TextIn.h"

#include <QFont>

#include <gtest/gtest.h>

namespace clockwell::test {

namespace {

const QByteArray label = "FieldLabel { text: \"Current password\" }";

QFont fontOf(ComponentStage &stage)
{
    return textIn(stage.item())->property("font").value<QFont>();
}

} // namespace

TEST(FieldLabel, ShowsItsTextInUpperCase)
{
    ComponentStage stage(label);
    ComponentStage upper("FieldLabel { text: \"CURRENT PASSWORD\" }");
    EXPECT_EQ(fontOf(stage).capitalization(), QFont::AllUppercase);
    EXPECT_EQ(stage.shot(), upper.shot());
}

TEST(FieldLabel, IsReadOutAsItIsShown)
{
    ComponentStage stage(label);
    EXPECT_EQ(stage.screen().texts(), QStringList(QStringLiteral("CURRENT PASSWORD")));
}

TEST(FieldLabel, HasSmallSpacedMutedType)
{
    ComponentStage stage(label);
    EXPECT_EQ(fontOf(stage).pixelSize(), 10);
    EXPECT_EQ(fontOf(stage).weight(), QFont::Medium);
    EXPECT_EQ(fontOf(stage).letterSpacingType(), QFont::AbsoluteSpacing);
    EXPECT_NEAR(fontOf(stage).letterSpacing(), .6, 1.0 / 64); // fonts count in 64ths
    EXPECT_EQ(textIn(stage.item())->property("color").value<QColor>(), QColor(91, 123, 168));
}

TEST(FieldLabel, FillsTheWidthAndStartsAtTheLeadingEdge)
{
    ComponentStage stage(label);
    EXPECT_EQ(stage.item()->width(), 350);
    EXPECT_EQ(textIn(stage.item())->width(), 350);
    EXPECT_EQ(textIn(stage.item())->property("effectiveHorizontalAlignment").toInt(), int(Qt::AlignLeft));
}

TEST(FieldLabel, WrapsLargeText)
{
    ComponentStage stage("FieldLabel { width: 100; text: \"Company code (optional)\" }");
    const qreal oneLine = stage.item()->height();
    EXPECT_GT(oneLine, 20);
    EXPECT_FALSE(textIn(stage.item())->property("truncated").toBool());
}

} // namespace clockwell::test
