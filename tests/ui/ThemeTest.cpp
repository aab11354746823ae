#include "ui/Theme.h"

#include <QFont>
#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QRegularExpression>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <limits>

namespace clockwell {

TEST(Theme, HasTheColorsOfThePalette)
{
    const Theme theme(nullptr);
    EXPECT_EQ(theme.background(), QColor(9, 21, 42));
    EXPECT_EQ(theme.card(), QColor(13, 30, 58));
    EXPECT_EQ(theme.surface(), QColor(19, 38, 69));
    EXPECT_EQ(theme.textPrimary(), QColor(230, 237, 248));
    EXPECT_EQ(theme.textSecondary(), QColor(138, 160, 192));
    EXPECT_EQ(theme.textMuted(), QColor(91, 123, 168));
    EXPECT_EQ(theme.brand(), QColor(39, 120, 245));
    EXPECT_EQ(theme.success(), QColor(52, 199, 89));
    EXPECT_EQ(theme.warning(), QColor(255, 159, 10));
    EXPECT_EQ(theme.danger(), QColor(255, 69, 58));
    EXPECT_EQ(theme.leave(), QColor(191, 90, 242));
    EXPECT_EQ(theme.white(), QColor(255, 255, 255));
}

TEST(Theme, DividesWithWhiteAtEightPercent)
{
    const QColor divider = Theme(nullptr).divider();
    EXPECT_EQ(divider.rgb(), qRgb(255, 255, 255));
    EXPECT_NEAR(divider.alphaF(), .08, .0001);
}

TEST(Theme, StartsWithTextAsDesignedAndMotion)
{
    const Theme theme(nullptr);
    EXPECT_EQ(theme.textScale(), 1.0);
    EXPECT_FALSE(theme.reducedMotion());
    EXPECT_GT(theme.duration(), 0);
}

TEST(Theme, TellsOnceWhenTheTextScaleChanges)
{
    Theme theme(nullptr);
    QSignalSpy changed(&theme, &Theme::textScaleChanged);
    theme.setTextScale(1.5);
    theme.setTextScale(1.5);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(theme.textScale(), 1.5);
}

TEST(Theme, LimitsTheTextScaleToWhatScreensCanTake)
{
    Theme theme(nullptr);
    theme.setTextScale(0);
    EXPECT_EQ(theme.textScale(), 0.5);
    theme.setTextScale(100);
    EXPECT_EQ(theme.textScale(), 3.0);
}

TEST(Theme, IgnoresATextScaleThatIsNoNumber)
{
    Theme theme(nullptr);
    theme.setTextScale(std::numeric_limits<qreal>::quiet_NaN());
    EXPECT_EQ(theme.textScale(), 1.0);
}

TEST(Theme, HasNoDurationsWithReducedMotion)
{
    Theme theme(nullptr);
    QSignalSpy changed(&theme, &Theme::reducedMotionChanged);
    theme.setReducedMotion(true);
    theme.setReducedMotion(true);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(theme.duration(), 0);
}

TEST(Theme, NamesFontsThatAreThere)
{
    const Theme theme(nullptr);
    for (const QString &family : {theme.fontFamily(), theme.monospacedFamily()})
        EXPECT_EQ(QFontInfo(QFont(family)).family().toStdString(), family.toStdString());
    EXPECT_FALSE(QFontInfo(QFont(theme.fontFamily())).fixedPitch());
    EXPECT_TRUE(QFontInfo(QFont(theme.monospacedFamily())).fixedPitch());
}

// What a text measures must not depend on what else is installed.
TEST(Theme, IsTestedWithoutTheOtherFontsOfTheMachine)
{
    static const QRegularExpression ours(
        QStringLiteral("^(Inter|Fira Code|Noto Sans (Arabic|Devanagari|Thai) UI)( |$)"));
    const QStringList families = QFontDatabase::families();
    EXPECT_FALSE(families.isEmpty());
    for (const QString &family : families) {
        const QString drawn = QFontInfo(QFont(family)).family(); // of what "Sans Serif" stands for
        EXPECT_TRUE(ours.match(drawn).hasMatch()) << drawn.toStdString() << " (is FONTCONFIG_FILE set?)";
    }
    for (const auto script : {QFontDatabase::Arabic, QFontDatabase::Devanagari, QFontDatabase::Thai})
        EXPECT_FALSE(QFontDatabase::families(script).isEmpty()) << script;
}

TEST(Theme, GivesDigitsTheWidthOfTheWidest)
{
    QFont font(Theme(nullptr).fontFamily());
    font.setPixelSize(22);
    const QFontMetricsF metrics(font);
    const qreal width = Theme(nullptr).digitWidth(font);
    EXPECT_GE(width, metrics.horizontalAdvance(u'0'));
    EXPECT_GE(width, metrics.horizontalAdvance(u'1'));
    EXPECT_LT(width, 22);
}

} // namespace clockwell
