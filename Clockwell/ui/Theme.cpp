#include "Theme.h"

#include "Pictures.h"
#include "StatusVocabulary.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QQmlEngine>

#include <algorithm>
#include <cmath>

namespace clockwell {

namespace {

// A phone's own fonts belong to its looks. What a Linux system takes for its default depends on what was
// installed, so there the app names fonts that its packages bring. It does not ask first whether they are
// there: looking a family up costs more than the sign-in screen's whole text.
#if defined(Q_OS_LINUX) && !defined(Q_OS_ANDROID)
constexpr bool namesItsFonts = true;
#else
constexpr bool namesItsFonts = false;
#endif

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

bool isLatin(QChar character)
{
    return character.script() == QChar::Script_Common || character.script() == QChar::Script_Latin;
}

} // namespace

Theme *Theme::create(QQmlEngine *engine, QJSEngine *)
{
    engine->addImageProvider(QStringLiteral("pictures"), new Pictures);
    return new Theme(nullptr);
}

Theme *Theme::of(QQmlEngine &engine)
{
    const int type = qmlTypeId("Clockwell.Ui", 1, 0, "Theme");
    return type < 0 ? nullptr : engine.singletonInstance<Theme *>(type);
}

QString Theme::fontFamily() const
{
    return namesItsFonts ? QStringLiteral("Inter") : QGuiApplication::font().family();
}

QString Theme::monospacedFamily() const
{
    static const QString family = namesItsFonts
                                      ? QStringLiteral("Fira Code")
                                      : QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
    return family;
}

void Theme::setTextScale(qreal scale)
{
    const qreal limited = std::isnan(scale) ? 1.0 : std::clamp(scale, 0.5, 3.0);
    if (!qFuzzyCompare(limited, m_textScale)) {
        m_textScale = limited;
        Q_EMIT textScaleChanged();
    }
}

void Theme::setReducedMotion(bool reduced)
{
    if (reduced != m_reducedMotion) {
        m_reducedMotion = reduced;
        Q_EMIT reducedMotionChanged();
    }
}

QColor Theme::statusColor(const QString &status) const
{
    return QColor::fromRgb(clockwell::statusColor(status));
}

QString Theme::statusLabel(const QString &status) const
{
    return clockwell::statusLabel(status);
}

QUrl Theme::picture(const QString &file, const QColor &tint) const
{
    return Pictures::url(file, tint);
}

QStringList Theme::tabularCells(const QString &text) const
{
    if (!std::all_of(text.cbegin(), text.cend(), isLatin))
        return {text};
    QStringList cells;
    bool afterDigit = true;
    for (const QChar character : text) {
        if (isDigit(character) || afterDigit)
            cells.append(character);
        else
            cells.last().append(character);
        afterDigit = isDigit(character);
    }
    return cells;
}

qreal Theme::tabularWidth(const QString &text, const QFont &font) const
{
    const QFontMetricsF metrics(font);
    qreal width = 0;
    for (const QString &cell : tabularCells(text))
        width += cell.size() == 1 && isDigit(cell.front()) ? digitWidth(font)
                                                           : std::ceil(metrics.horizontalAdvance(cell));
    return width;
}

qreal Theme::digitWidth(const QFont &font) const
{
    const QFontMetricsF metrics(font);
    qreal widest = 0;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
        widest = std::max(widest, metrics.horizontalAdvance(QChar(digit)));
    return widest;
}

} // namespace clockwell
