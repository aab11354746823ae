#pragma once

#include "ui/FieldTraits.h"
#include "ui/Palette.h"
#include "ui/Theme.h"

#include <QCoreApplication>
#include <QFont>
#include <QImage>
#include <QQuickItem>
#include <QQuickWindow>

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

namespace clockwell::test {

inline constexpr QRgb white = 0xffffffff;
inline constexpr auto Normal = QFont::Normal;
inline constexpr auto Medium = QFont::Medium;
inline constexpr auto DemiBold = QFont::DemiBold;
inline constexpr auto Bold = QFont::Bold;

/// How something that is drawn looks: a text, a symbol, the rounded rectangle behind a field, button or row,
/// a rule or the logo.
struct Look
{
    QString what;
    QColor color;
    qreal size = 0; ///< of a text in pixels; side of a symbol or the logo, corner radius, height of a rule
    int weight = 0; ///< of a text
    /// The distance to the nearest thing above, in points; none where it is nobody's business.
    std::optional<qreal> gap = std::nullopt;
};

inline Look text(const QString &what, QRgb color, qreal size, int weight = QFont::Normal,
                 std::optional<qreal> gap = std::nullopt)
{
    return {what, QColor::fromRgb(color), size, weight, gap};
}
inline Look symbol(const QString &name, QRgb color, qreal size)
{
    return {u'<' + name + u'>', QColor::fromRgb(color), size, 0, std::nullopt};
}
inline Look shape(QRgb color, qreal radius, std::optional<qreal> gap = std::nullopt)
{
    return {QStringLiteral("[]"), QColor::fromRgb(color), radius, 0, gap};
}
inline Look rule(std::optional<qreal> gap = std::nullopt)
{
    return {QStringLiteral("[rule]"), Theme().divider(), 1, 0, gap};
}
inline Look logo()
{
    return {QStringLiteral("[logo]"), QColor(), 46, 0, std::nullopt};
}

/// A look with the place where it was found, in the window's coordinates.
struct Drawn
{
    Look look;
    QRectF rect;
};

inline Look lookOf(const QQuickItem &item)
{
    Look look{{}, item.property("color").value<QColor>(), 0, 0, std::nullopt};
    if (item.inherits("QQuickText")) {
        const auto font = item.property("font").value<QFont>();
        const QString text = item.property("text").toString();
        look.what = font.capitalization() == QFont::AllUppercase ? text.toUpper() : text;
        look.size = font.pixelSize();
        look.weight = font.weight();
    } else if (item.inherits("clockwell::Symbol")) {
        look.what = u'<' + item.property("name").toString() + u'>';
        look.size = item.property("size").toReal();
    } else if (item.inherits("clockwell::ContinuousRectangle")) {
        look.what = QStringLiteral("[]");
        look.size = item.property("radius").toReal();
    } else if (item.inherits("clockwell::AppLogo")) {
        look.what = QStringLiteral("[logo]");
        look.size = item.width();
    } else if (item.inherits("QQuickRectangle") && item.height() < 4) {
        look.what = QStringLiteral("[rule]");
        look.size = item.height();
    }
    return look;
}

/// The part of an item that is drawn: a text without its padding.
inline QRectF rectOf(const QQuickItem &item)
{
    const auto padding = [&](const char *side) { return item.property(side).toReal(); };
    const QRectF whole(0, 0, item.width(), item.height());
    return item.mapRectToScene(whole.adjusted(padding("leftPadding"), padding("topPadding"),
                                              -padding("rightPadding"), -padding("bottomPadding")));
}

inline void collectDrawn(const QQuickItem &item, QList<Drawn> &found)
{
    // A ring says where the focus is, wherever that happens to be.
    if (!item.isVisible() || item.opacity() == 0 || item.objectName() == QLatin1String("ring"))
        return;
    const Look look = lookOf(item);
    if (!look.what.isEmpty())
        found.append({look, rectOf(item)});
    for (const QQuickItem *child : item.childItems())
        collectDrawn(*child, found);
}

/// What an item and everything in it draws, in the order of the tree. Each has its distance to the lowest
/// edge above its own upper edge; none where there is nothing above.
inline QList<Drawn> drawnIn(const QQuickItem &root)
{
    QCoreApplication::processEvents();
    root.window()->grabWindow(); // puts everything in its place first
    QList<Drawn> found;
    collectDrawn(root, found);
    for (Drawn &drawn : found) {
        for (const Drawn &other : found) {
            const qreal distance = drawn.rect.top() - other.rect.bottom();
            if (&other != &drawn && distance >= 0)
                drawn.look.gap = std::min(distance, drawn.look.gap.value_or(distance));
        }
    }
    return found;
}

inline QString described(const Look &look, const Look &expected)
{
    QString result =
        QStringLiteral("%1 %2 %3").arg(look.what, look.color.name(QColor::HexArgb)).arg(look.size);
    if (look.weight != 0)
        result += QStringLiteral(" weight %1").arg(look.weight);
    if (expected.gap)
        result +=
            look.gap ? QStringLiteral(" %1 below").arg(*look.gap) : QStringLiteral(" with nothing above");
    return result;
}

/// Everything that a screen draws looks as it should, nothing else is drawn, and it stands in this order from
/// top to bottom.
inline void expectLooks(const QQuickItem &root, const QList<Look> &expected)
{
    const QList<Drawn> drawn = drawnIn(root);
    qreal last = 0;
    for (qsizetype i = 0; i < std::max(drawn.size(), expected.size()); ++i) {
        if (i >= drawn.size() || i >= expected.size()) {
            const Look &look = i < drawn.size() ? drawn.at(i).look : expected.at(i);
            ADD_FAILURE() << (i < drawn.size() ? "unexpected: " : "missing: ")
                          << described(look, look).toStdString();
            continue;
        }
        EXPECT_EQ(described(drawn.at(i).look, expected.at(i)).toStdString(),
                  described(expected.at(i), expected.at(i)).toStdString())
            << "in row " << i;
        const qreal top = drawn.at(i).rect.top();
        EXPECT_GE(top, last - 2) << drawn.at(i).look.what.toStdString() << " stands too high";
        last = top;
    }
}

/// The one thing on a screen that is called so looks as it should.
inline void expectLook(const QQuickItem &root, const Look &expected)
{
    QStringList found;
    for (const Drawn &drawn : drawnIn(root)) {
        if (drawn.look.what == expected.what)
            found.append(described(drawn.look, expected));
    }
    EXPECT_EQ(found.join(u'\n').toStdString(), described(expected, expected).toStdString());
}

/// What a field asks of the platform.
struct FieldLook
{
    QString label;
    QString placeholder;
    bool secure;
    FieldTraits::Keyboard keyboard;
    FieldTraits::TextContentType textContentType;
    FieldTraits::Autocap autocap;
};

inline void collectFields(const QQuickItem &item, QList<const QQuickItem *> &found)
{
    if (!item.isVisible())
        return;
    if (item.property("reveal").isValid() && item.property("textContentType").isValid())
        found.append(&item);
    for (const QQuickItem *child : item.childItems())
        collectFields(*child, found);
}

/// A screen has exactly these fields, in this order.
inline void expectFields(const QQuickItem &root, const QList<FieldLook> &expected)
{
    QList<const QQuickItem *> fields;
    collectFields(root, fields);
    ASSERT_EQ(fields.size(), expected.size());
    for (qsizetype i = 0; i < expected.size(); ++i) {
        const QQuickItem &field = *fields.at(i);
        const FieldLook &wanted = expected.at(i);
        const std::string label = wanted.label.toStdString();
        EXPECT_EQ(field.property("label").toString().toStdString(), label);
        EXPECT_EQ(field.property("placeholder").toString().toStdString(), wanted.placeholder.toStdString());
        EXPECT_EQ(field.property("secure").toBool(), wanted.secure) << label;
        EXPECT_EQ(field.property("keyboard").toInt(), int(wanted.keyboard)) << label;
        EXPECT_EQ(field.property("textContentType").toInt(), int(wanted.textContentType)) << label;
        EXPECT_EQ(field.property("autocap").toInt(), int(wanted.autocap)) << label;
    }
}

} // namespace clockwell::test
