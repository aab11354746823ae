#include "Symbol.h"

#include "ImageNode.h"
#include "Palette.h"
#include "SymbolTable.h"

#include <QPainter>
#include <QQuickWindow>

namespace clockwell {

namespace {

// Side of the square that the icons are drawn on.
constexpr qreal iconUnits = 256;

} // namespace

Symbol::Symbol(QQuickItem *parent) : QQuickItem(parent), m_color(QColor::fromRgb(palette::textMuted))
{
    setFlag(ItemHasContents);
    setImplicitSize(m_size, m_size);
}

void Symbol::setName(const QString &name)
{
    if (name != m_name) {
        m_name = name;
        update();
        Q_EMIT nameChanged();
    }
}

void Symbol::setSize(qreal size)
{
    if (!qFuzzyCompare(size, m_size)) {
        m_size = size;
        setImplicitSize(size, size);
        update();
        Q_EMIT sizeChanged();
    }
}

void Symbol::setColor(const QColor &color)
{
    if (color != m_color) {
        m_color = color;
        update();
        Q_EMIT colorChanged();
    }
}

QSGNode *Symbol::updatePaintNode(QSGNode *node, UpdatePaintNodeData *)
{
    const QPainterPath path = symbolPath(m_name);
    const int pixels = qRound(m_size * window()->effectiveDevicePixelRatio());
    if (path.isEmpty() || pixels <= 0)
        return updateImageNode(node, this, {});
    const QImage image = cachedImage({m_name, {pixels, pixels}, m_color.rgba()}, [&](QImage &drawn) {
        QPainter painter(&drawn);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(pixels / iconUnits, pixels / iconUnits);
        painter.fillPath(path, m_color);
    });
    return updateImageNode(node, this, image);
}

void Symbol::itemChange(ItemChange change, const ItemChangeData &data)
{
    if (change == ItemDevicePixelRatioHasChanged)
        update();
    QQuickItem::itemChange(change, data);
}

void Symbol::geometryChange(const QRectF &now, const QRectF &before)
{
    update();
    QQuickItem::geometryChange(now, before);
}

} // namespace clockwell
