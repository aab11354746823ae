#include "ComponentStage.h"

#include <QDir>
#include <QPainter>
#include <QSvgRenderer>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace clockwell::test {

namespace {

const char *const names[] = {"location.slash.fill",
                             "location.fill.viewfinder",
                             "checkmark.seal.fill",
                             "checkmark.circle.fill",
                             "xmark.circle.fill",
                             "xmark",
                             "rectangle.portrait.and.arrow.right",
                             "person.crop.circle",
                             "location.circle",
                             "key.fill",
                             "info.circle.fill",
                             "hourglass",
                             "eye.slash",
                             "eye",
                             "exclamationmark.triangle.fill",
                             "clock.badge.exclamationmark.fill",
                             "circle.lefthalf.filled",
                             "chevron.right",
                             "checkmark.shield.fill",
                             "chart.bar.fill",
                             "calendar.badge.clock",
                             "calendar",
                             "building.2.fill",
                             "arrow.up.right.circle",
                             "arrow.down.right.circle",
                             "airplane",
                             "chevron.left"};

constexpr int side = 64;

QImage blank()
{
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QByteArray symbol(const QByteArray &name)
{
    return "Symbol { size: 64; color: \"#ff0000\"; name: \"" + name + "\" }";
}

/// What is shown of the symbol, as coverage: its red on the background's, 9.
QImage shown(ComponentStage &stage)
{
    const QImage shot = stage.shot();
    QImage image = blank();
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const int alpha = (shot.pixelColor(20 + x, 20 + y).red() - 9) * 255 / (255 - 9);
            image.setPixel(x, y, qRgba(0, 0, 0, std::clamp(alpha, 0, 255)));
        }
    }
    return image;
}

QRect boundsOf(const QImage &image)
{
    QRect bounds;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            if (qAlpha(image.pixel(x, y)) > 0)
                bounds |= QRect(x, y, 1, 1);
    return bounds;
}

/// The largest difference of any pixel's coverage, 0 to 255.
int difference(const QImage &a, const QImage &b)
{
    int largest = 0;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            largest = std::max(largest, std::abs(qAlpha(a.pixel(x, y)) - qAlpha(b.pixel(x, y))));
    return largest;
}

} // namespace

class EverySymbol : public testing::TestWithParam<const char *>
{};

TEST_P(EverySymbol, IsDrawnLargeWithinItsSquare)
{
    ComponentStage stage(symbol(GetParam()));
    const QRect bounds = boundsOf(shown(stage));
    EXPECT_GT(bounds.width(), 15);
    EXPECT_GT(bounds.height(), 15);
    EXPECT_EQ(stage.inkOf(stage.item()->parentItem()->parentItem()), stage.inkOf(stage.item()));
}

TEST_P(EverySymbol, DrawsInItsTint)
{
    ComponentStage stage("Symbol { size: 40; color: \"#ff0000\"; name: \"" + QByteArray(GetParam()) + "\" }");
    EXPECT_GT(stage.inkOf(stage.item()), 40);
    const QImage shot = stage.shot().copy(20, 20, 40, 40);
    int full = 0;
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 40; ++x) {
            full += shot.pixelColor(x, y) == QColor(Qt::red);
            EXPECT_GE(shot.pixelColor(x, y).red(), 9);
            EXPECT_LE(shot.pixelColor(x, y).blue(), 42);
        }
    }
    EXPECT_GT(full, 10);
}

TEST_P(EverySymbol, IsDrawnAsItsIcon)
{
    ComponentStage stage(symbol(GetParam()));
    QSvgRenderer renderer(QStringLiteral(":/clockwell/symbols/%1.svg").arg(QLatin1String(GetParam())));
    QImage icon = blank();
    QPainter painter(&icon);
    renderer.render(&painter);
    painter.end();
    if (QByteArray(GetParam()) == "circle.lefthalf.filled")
        icon = icon.mirrored(true, false); // the one icon that is drawn the other way round
    EXPECT_LE(difference(shown(stage), icon), 24);
}

INSTANTIATE_TEST_SUITE_P(Names, EverySymbol, testing::ValuesIn(names));

TEST(Symbol, KnowsExactlyTheNamesInUse)
{
    QStringList expected;
    for (const char *name : names)
        expected.append(QLatin1String(name) + QStringLiteral(".svg"));
    expected.sort();
    EXPECT_EQ(QDir(QStringLiteral(":/clockwell/symbols")).entryList(QDir::Files, QDir::Name), expected);
}

TEST(Symbol, LooksDifferentForEveryName)
{
    ComponentStage stage(symbol("eye"));
    QList<QImage> seen;
    for (const char *name : names) {
        stage.item()->setProperty("name", QLatin1String(name));
        const QImage image = shown(stage);
        for (const QImage &other : std::as_const(seen))
            EXPECT_GT(difference(image, other), 100) << name;
        seen.append(image);
    }
}

/// The sum of the pixels' coverage between two columns, 0 to 255 each.
int inkBetween(const QImage &shot, int left, int right)
{
    int ink = 0;
    for (int y = 0; y < shot.height(); ++y)
        for (int x = left; x < right; ++x)
            ink += shot.pixelColor(x, y).red();
    return ink;
}

TEST(Symbol, HalfACircleIsFilledOnTheLeft)
{
    // In a layout from right to left too: the name says which half.
    for (const QByteArray mirrored : {"false", "true"}) {
        ComponentStage stage("Symbol { size: 64; color: \"#ff0000\"; name: \"circle.lefthalf.filled\"; "
                             "LayoutMirroring.enabled: " +
                             mirrored + " }");
        const QImage shot = stage.shot().copy(20, 20, 64, 64);
        EXPECT_EQ(shot.pixelColor(20, 32), QColor(Qt::red)) << mirrored.toStdString();
        EXPECT_NE(shot.pixelColor(44, 32), QColor(Qt::red)) << mirrored.toStdString();
        EXPECT_GT(inkBetween(shot, 0, 32), 2 * inkBetween(shot, 32, 64)) << mirrored.toStdString();
        EXPECT_EQ(shot.pixelColor(64 - 8, 32), QColor(Qt::red)) << "the outline goes all around";
    }
}

TEST(Symbol, DrawsNothingForAnUnknownName)
{
    ComponentStage stage("Symbol { name: \"no.such.symbol\" }");
    EXPECT_EQ(stage.inkOf(stage.item()), 0);
    stage.item()->setProperty("name", QString());
    EXPECT_EQ(stage.inkOf(stage.item()->parentItem()->parentItem()), 0);
}

TEST(Symbol, FollowsItsNameColorAndSize)
{
    ComponentStage stage("Symbol { name: \"checkmark.circle.fill\"; color: \"#ff0000\" }");
    EXPECT_EQ(stage.item()->size(), QSizeF(24, 24));
    EXPECT_EQ(stage.colorAt(12, 4), QColor(Qt::red));
    stage.item()->setProperty("color", QColor(Qt::green));
    EXPECT_EQ(stage.colorAt(12, 4), QColor(Qt::green));
    stage.item()->setProperty("size", 48);
    EXPECT_EQ(stage.item()->size(), QSizeF(48, 48));
    EXPECT_EQ(stage.colorAt(24, 8), QColor(Qt::green));
    stage.item()->setProperty("name", QStringLiteral("eye"));
    EXPECT_EQ(stage.colorAt(24, 4), QColor(9, 21, 42));
    stage.item()->setProperty("size", 0);
    EXPECT_EQ(stage.inkOf(stage.item()->parentItem()->parentItem()), 0);
}

TEST(Symbol, IsNotInTheAccessibilityTree)
{
    ComponentStage stage("Symbol { name: \"eye\" }");
    EXPECT_TRUE(stage.screen().elements().isEmpty());
}

} // namespace clockwell::test
