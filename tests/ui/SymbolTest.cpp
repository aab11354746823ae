#include "ComponentStage.h"
#include "ui/SymbolTable.h"

#include <QDirIterator>
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

QImage draw(const QPainterPath &path)
{
    QImage image = blank();
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(side / 256.0, side / 256.0);
    painter.fillPath(path, Qt::black);
    return image;
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

TEST_P(EverySymbol, HasAnOutlineWithinItsSquare)
{
    const QRectF bounds = symbolPath(QLatin1String(GetParam())).boundingRect();
    EXPECT_GT(bounds.width(), 60);
    EXPECT_GT(bounds.height(), 60);
    EXPECT_TRUE(QRectF(0, 0, 256, 256).adjusted(-.5, -.5, .5, .5).contains(bounds));
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

INSTANTIATE_TEST_SUITE_P(Names, EverySymbol, testing::ValuesIn(names));

TEST(Symbol, KnowsExactlyTheNamesInUse)
{
    QStringList expected;
    for (const char *name : names)
        expected.append(QLatin1String(name));
    expected.sort();
    QStringList known = symbolNames();
    known.sort();
    EXPECT_EQ(known, expected);
}

TEST(Symbol, HasADifferentOutlineForEveryName)
{
    const QStringList known = symbolNames();
    for (qsizetype i = 0; i < known.size(); ++i) {
        for (qsizetype j = i + 1; j < known.size(); ++j) {
            EXPECT_NE(symbolPath(known[i]), symbolPath(known[j]))
                << known[i].toStdString() << ' ' << known[j].toStdString();
        }
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

TEST(Symbol, IsDrawnAsAnSvgRendererDrawsItsIcon)
{
    QDirIterator icons(QStringLiteral(":/clockwell/symbols"), {QStringLiteral("*.svg")}, QDir::Files,
                       QDirIterator::Subdirectories);
    int count = 0;
    while (icons.hasNext()) {
        QSvgRenderer renderer(icons.next());
        QImage image = blank();
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        renderer.render(&painter);
        painter.end();
        if (icons.fileName() == QStringLiteral("circle-half-fill.svg"))
            image = image.mirrored(true, false); // the one icon that is drawn the other way round
        int nearest = 255;
        for (const QString &name : symbolNames())
            nearest = std::min(nearest, difference(draw(symbolPath(name)), image));
        EXPECT_LE(nearest, 24) << icons.filePath().toStdString();
        ++count;
    }
    EXPECT_EQ(count, symbolNames().size());
}

TEST(Symbol, DrawsNothingForAnUnknownName)
{
    ComponentStage stage("Symbol { name: \"no.such.symbol\" }");
    EXPECT_EQ(stage.inkOf(stage.item()), 0);
    EXPECT_TRUE(symbolPath(QString()).isEmpty());
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
    EXPECT_EQ(stage.inkOf(stage.item()->parentItem()), 0);
}

TEST(Symbol, IsNotInTheAccessibilityTree)
{
    ComponentStage stage("Symbol { name: \"eye\" }");
    EXPECT_TRUE(stage.screen().elements().isEmpty());
}

} // namespace clockwell::test
