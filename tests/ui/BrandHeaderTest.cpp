#include "ComponentStage.h"

#include <gtest/gtest.h>

namespace clockwell::test {

namespace {

const QByteArray header = "BrandHeader { width: 350; subtitle: \"Sign in to mark attendance\" }";

} // namespace

TEST(BrandHeader, ShowsTheNameAndTheSubtitle)
{
    ComponentStage stage(header);
    EXPECT_EQ(stage.screen().texts(),
              QStringList({QStringLiteral("Qorvane"), QStringLiteral("Sign in to mark attendance")}));
    EXPECT_EQ(stage.screen().find(QStringLiteral("Qorvane"))->role, QAccessible::StaticText);
}

TEST(BrandHeader, SetsTheTypeOfItsLines)
{
    ComponentStage stage(header);
    const auto *title = stage.part("title");
    EXPECT_EQ(title->property("font").value<QFont>().pixelSize(), 17);
    EXPECT_EQ(title->property("font").value<QFont>().weight(), QFont::Bold);
    EXPECT_EQ(title->property("color").value<QColor>(), QColor(Qt::white));
    const auto *subtitle = stage.part("subtitle");
    EXPECT_EQ(subtitle->property("font").value<QFont>().pixelSize(), 12);
    EXPECT_EQ(subtitle->y() - title->y() - title->height(), 2);
    EXPECT_EQ(subtitle->x(), title->x());
}

TEST(BrandHeader, ShowsTheLogoAtFortySixPointsWithRoundCorners)
{
    ComponentStage stage(header);
    const auto *logo = stage.part("logo");
    EXPECT_EQ(logo->size(), QSizeF(46, 46));
    const QImage shot = stage.shot();
    const QColor background(9, 21, 42);
    EXPECT_EQ(shot.pixelColor(20, 20), background);
    EXPECT_EQ(shot.pixelColor(22, 22), background);
    EXPECT_EQ(shot.pixelColor(65, 65), background);
    EXPECT_NE(shot.pixelColor(25, 25), background);
    EXPECT_NE(shot.pixelColor(20 + 23, 20), background);
}

TEST(BrandHeader, CentersItsTextBesideTheLogo)
{
    ComponentStage stage(header);
    const auto *lines = stage.part("title")->parentItem();
    EXPECT_NEAR(lines->y() + lines->height() / 2, 23, .5);
}

TEST(BrandHeader, IsOneLineWithoutASubtitle)
{
    ComponentStage stage("BrandHeader { width: 350 }");
    EXPECT_EQ(stage.screen().texts(), QStringList(QStringLiteral("Qorvane")));
}

} // namespace clockwell::test
