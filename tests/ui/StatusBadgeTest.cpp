#include "ComponentStage.h"
#include "ui/Theme.h"

#include <QFont>
#include <QFontInfo>
#include <QRawFont>

#include <gtest/gtest.h>

namespace clockwell::test {

namespace {

const QByteArray badge = "StatusBadge { status: \"MISSING_CHECK_OUT\" }";
const QColor danger(255, 69, 58);

} // namespace

TEST(StatusBadge, SaysTheLabelOfItsStatus)
{
    ComponentStage stage(badge);
    ASSERT_EQ(stage.screen().elements().size(), 1);
    EXPECT_EQ(stage.screen().elements().constFirst().name, QStringLiteral("MISSING CHECK OUT"));
    EXPECT_EQ(stage.screen().elements().constFirst().role, QAccessible::StaticText);
}

TEST(StatusBadge, HasSmallSemiboldMonospacedType)
{
    ComponentStage stage(badge);
    const auto font = stage.part("label")->property("font").value<QFont>();
    EXPECT_EQ(font.pixelSize(), 11);
    EXPECT_EQ(font.weight(), QFont::DemiBold);
    EXPECT_TRUE(QFontInfo(font).fixedPitch());
    // Drawn in this weight, not in the bold of a family that has no other.
    const QRawFont drawn = QRawFont::fromFont(font);
    EXPECT_EQ(drawn.familyName().toStdString(), stage.theme().monospacedFamily().toStdString());
    EXPECT_EQ(drawn.styleName().toStdString(), "SemiBold");
}

TEST(StatusBadge, PadsByElevenAndFourPoints)
{
    ComponentStage stage(badge);
    const auto *dot = stage.part("dot");
    const auto *label = stage.part("label");
    EXPECT_EQ(dot->x(), 11);
    EXPECT_EQ(dot->size(), QSizeF(6, 6));
    EXPECT_NEAR(dot->y() + 3, stage.item()->height() / 2, .5);
    EXPECT_EQ(label->y(), 4);
    EXPECT_EQ(stage.item()->height(), label->height() + 8);
    EXPECT_EQ(label->x() + label->width(), stage.item()->width() - 11);
    EXPECT_EQ(label->width(), label->implicitWidth());
}

TEST(StatusBadge, StandsOnItsColorAtFourteenPercent)
{
    ComponentStage stage(badge);
    const QColor capsule = stage.colorAt(stage.item()->width() / 2, 1);
    EXPECT_NEAR(capsule.red(), 9 + .14 * (255 - 9), 1.5);
    EXPECT_NEAR(capsule.green(), 21 + .14 * (69 - 21), 1.5);
    EXPECT_NEAR(capsule.blue(), 42 + .14 * (58 - 42), 1.5);
    EXPECT_EQ(stage.part("capsule")->property("radius").toReal(), stage.item()->height() / 2);
}

TEST(StatusBadge, DrawsDotAndLabelInTheStatusColor)
{
    ComponentStage stage(badge);
    const auto *dot = stage.part("dot");
    EXPECT_EQ(stage.colorAt(dot->x() + 3, dot->y() + 3), danger);
    EXPECT_EQ(stage.part("label")->property("color").value<QColor>(), danger);
}

TEST(StatusBadge, FollowsItsStatus)
{
    ComponentStage stage(badge);
    const qreal width = stage.item()->width();
    stage.item()->setProperty("status", QStringLiteral("on_time"));
    EXPECT_LT(stage.item()->width(), width);
    EXPECT_EQ(stage.screen().texts(), QStringList(QStringLiteral("on time")));
    EXPECT_EQ(stage.part("label")->property("color").value<QColor>(), QColor(91, 123, 168));
    stage.item()->setProperty("status", QStringLiteral("ON_LEAVE"));
    EXPECT_EQ(stage.part("label")->property("color").value<QColor>(), QColor(191, 90, 242));
}

TEST(StatusBadge, GrowsWithTheTextScale)
{
    ComponentStage stage(badge);
    const QSizeF before = stage.item()->size();
    stage.theme().setTextScale(2);
    EXPECT_GT(stage.item()->width(), before.width() * 1.6);
    EXPECT_EQ(stage.part("dot")->size(), QSizeF(12, 12));
}

} // namespace clockwell::test
