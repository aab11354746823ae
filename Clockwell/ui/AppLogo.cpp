#include "AppLogo.h"

#include "ImageNode.h"

#include <QQuickWindow>
#include <QResource>

#include <algorithm>
#include <cmath>

namespace clockwell {

namespace {

constexpr int logoSide = 46;
constexpr int largestScale = 3;

/// The logo drawn for this many pixels a point; the pixels stay in the program's own read-only memory.
QImage logo(int scale)
{
    const QString suffix = scale == 1 ? QString() : QStringLiteral("@%1x").arg(scale);
    const QResource pixels(QStringLiteral(":/clockwell/AppLogo%1.pixels").arg(suffix));
    const int length = logoSide * scale;
    if (pixels.size() != qint64(4) * length * length)
        return {};
    return {pixels.data(), length, length, QImage::Format_ARGB32_Premultiplied};
}

} // namespace

AppLogo::AppLogo(QQuickItem *parent) : QQuickItem(parent)
{
    setFlag(ItemHasContents);
    setImplicitSize(logoSide, logoSide);
}

QSGNode *AppLogo::updatePaintNode(QSGNode *node, UpdatePaintNodeData *)
{
    const qreal ratio = window()->effectiveDevicePixelRatio();
    const int pixels = qRound(logoSide * ratio);
    const QImage drawn = logo(std::clamp(static_cast<int>(std::ceil(ratio)), 1, largestScale));
    if (drawn.width() == pixels)
        return updateImageNode(node, this, drawn);
    return updateImageNode(node, this,
                           drawn.scaled(pixels, pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
}

void AppLogo::itemChange(ItemChange change, const ItemChangeData &data)
{
    if (change == ItemDevicePixelRatioHasChanged)
        update();
    QQuickItem::itemChange(change, data);
}

} // namespace clockwell
