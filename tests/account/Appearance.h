#pragma once

#include "ui/Palette.h"
#include "ui/Theme.h"
#include "ui/controls/FieldTraits.h"

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

/// The appearance of a drawn element: a text, a symbol, the rounded rectangle behind a field, button or row,
/// a rule or the logo.
struct Appearance
{
    QString name;
    QColor color;
    qreal size = 0; ///< of a text in pixels; side of a symbol or the logo, corner radius, height of a rule
    int weight = 0; ///< of a text
    /// The distance to the nearest element above, in points; not set if it is not checked.
    std::optional<qreal> gap = std::nullopt;
};

inline Appearance text(const QString &content, QRgb color, qreal size, int weight = QFont::Normal,
                       std::optional<qreal> gap = std::nullopt)
{
    return {content, QColor::fromRgb(color), size, weight, gap};
}
inline Appearance symbol(const QString &name, QRgb color, qreal size)
{
    return {u'<' + name + u'>', QColor::fromRgb(color), size, 0, std::nullopt};
}
inline Appearance shape(QRgb color, qreal radius, std::optional<qreal> gap = std::nullopt)
{
    return {QStringLiteral("[]"), QColor::fromRgb(color), radius, 0, gap};
}
inline Appearance rule(std::optional<qreal> gap = std::nullopt)
{
    return {QStringLiteral("[rule]"), Theme(nullptr).divider(), 1, 0, gap};
}
inline Appearance logo()
{
    return {QStringLiteral("[logo]"), QColor(), 46, 0, std::nullopt};
}

/// An element that was found, with its rectangle in scene coordinates.
struct DrawnItem
{
    Appearance appearance;
    QRectF rect;
};

inline Appearance appearanceOf(const QQuickItem &item)
{
    Appearance appearance{{}, item.property("color").value<QColor>(), 0, 0, std::nullopt};
    if (item.inherits("QQuickText")) {
        const auto font = item.property("font").value<QFont>();
        const QString text = item.property("text").toString();
        appearance.name = font.capitalization() == QFont::AllUppercase ? text.toUpper() : text;
        appearance.size = font.pixelSize();
        appearance.weight = font.weight();
    } else if (!item.property("name").toString().isEmpty() && item.property("size").isValid()) { // a symbol
        appearance.name = u'<' + item.property("name").toString() + u'>';
        appearance.size = item.property("size").toReal();
    } else if (item.inherits("clockwell::ContinuousRectangle")) {
        appearance.name = QStringLiteral("[]");
        appearance.size = item.property("radius").toReal();
    } else if (item.objectName() == QLatin1String("logo")) {
        appearance.name = QStringLiteral("[logo]");
        appearance.size = item.width();
    } else if (item.inherits("QQuickRectangle") && item.height() < 4) {
        appearance.name = QStringLiteral("[rule]");
        appearance.size = item.height();
    }
    return appearance;
}

/// The drawn area of an item: for a text, without its padding.
inline QRectF rectOf(const QQuickItem &item)
{
    const auto padding = [&](const char *side) { return item.property(side).toReal(); };
    const QRectF whole(0, 0, item.width(), item.height());
    return item.mapRectToScene(whole.adjusted(padding("leftPadding"), padding("topPadding"),
                                              -padding("rightPadding"), -padding("bottomPadding")));
}

inline void collectDrawnItems(const QQuickItem &item, QList<DrawnItem> &found)
{
    // The focus ring depends on where the focus is, not on the design of the screen.
    if (!item.isVisible() || item.opacity() == 0 || item.objectName() == QLatin1String("ring"))
        return;
    const Appearance appearance = appearanceOf(item);
    if (!appearance.name.isEmpty())
        found.append({appearance, rectOf(item)});
    auto children = item.childItems(); // as they are painted
    std::stable_sort(children.begin(), children.end(),
                     [](const QQuickItem *a, const QQuickItem *b) { return a->z() < b->z(); });
    for (const QQuickItem *child : children)
        collectDrawnItems(*child, found);
}

/// The elements drawn by an item and its descendants, in tree order. The gap of each is the distance from its
/// top edge to the lowest edge above it; not set if there is nothing above.
inline QList<DrawnItem> drawnItems(const QQuickItem &root)
{
    QCoreApplication::processEvents();
    root.window()->grabWindow(); // completes the layout first
    QList<DrawnItem> found;
    collectDrawnItems(root, found);
    for (DrawnItem &drawn : found) {
        for (const DrawnItem &other : found) {
            const qreal distance = drawn.rect.top() - other.rect.bottom();
            if (&other != &drawn && distance >= 0)
                drawn.appearance.gap = std::min(distance, drawn.appearance.gap.value_or(distance));
        }
    }
    return found;
}

inline QString describe(const Appearance &appearance, const Appearance &expected)
{
    QString result = QStringLiteral("%1 %2 %3")
                         .arg(appearance.name, appearance.color.name(QColor::HexArgb))
                         .arg(appearance.size);
    if (appearance.weight != 0)
        result += QStringLiteral(" weight %1").arg(appearance.weight);
    if (expected.gap)
        result += appearance.gap ? QStringLiteral(" %1 below").arg(*appearance.gap)
                                 : QStringLiteral(" with nothing above");
    return result;
}

/// Expects that a screen draws exactly these elements, in this order from top to bottom.
inline void expectAppearances(const QQuickItem &root, const QList<Appearance> &expected)
{
    const QList<DrawnItem> drawn = drawnItems(root);
    qreal last = 0;
    for (qsizetype i = 0; i < std::max(drawn.size(), expected.size()); ++i) {
        if (i >= drawn.size() || i >= expected.size()) {
            const Appearance &appearance = i < drawn.size() ? drawn.at(i).appearance : expected.at(i);
            ADD_FAILURE() << (i < drawn.size() ? "unexpected: " : "missing: ")
                          << describe(appearance, appearance).toStdString();
            continue;
        }
        EXPECT_EQ(describe(drawn.at(i).appearance, expected.at(i)).toStdString(),
                  describe(expected.at(i), expected.at(i)).toStdString())
            << "in row " << i;
        const qreal top = drawn.at(i).rect.top();
        EXPECT_GE(top, last - 2) << drawn.at(i).appearance.name.toStdString() << " is too high";
        last = top;
    }
}

/// Expects that a screen draws exactly one element of this name, with this appearance.
inline void expectAppearance(const QQuickItem &root, const Appearance &expected)
{
    QStringList found;
    for (const DrawnItem &drawn : drawnItems(root))
        if (drawn.appearance.name == expected.name)
            found.append(describe(drawn.appearance, expected));
    EXPECT_EQ(found.join(u'\n').toStdString(), describe(expected, expected).toStdString());
}

/// The expected label, placeholder and input traits of a field.
struct ExpectedField
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

/// Expects that a screen has exactly these fields, in this order.
inline void expectFields(const QQuickItem &root, const QList<ExpectedField> &expected)
{
    QList<const QQuickItem *> fields;
    collectFields(root, fields);
    ASSERT_EQ(fields.size(), expected.size());
    for (qsizetype i = 0; i < expected.size(); ++i) {
        const QQuickItem &field = *fields.at(i);
        const ExpectedField &wanted = expected.at(i);
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
