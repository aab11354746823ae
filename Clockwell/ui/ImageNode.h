#pragma once

#include <QColor>
#include <QImage>
#include <QSize>

#include <functional>

class QQuickItem;
class QSGNode;

namespace clockwell {

/// What makes one drawn image different from another: a name for what is drawn, its size in pixels, its
/// colour.
struct ImageKey
{
    QString name;
    QSize pixels;
    QRgb color = 0;
    bool operator==(const ImageKey &) const = default;
};

/// The image of this key, painted once and kept as long as it is in use often enough. To be called only from
/// updatePaintNode(), where the main thread waits, so that the one cache needs no lock.
QImage cachedImage(const ImageKey &key, const std::function<void(QImage &)> &paint);

/// The scene-graph node that shows an image in the middle of the item, one pixel of it on one of the screen:
/// `node` with its texture replaced, or a new one. A null image gives no node. The scene graph owns the
/// result.
QSGNode *updateImageNode(QSGNode *node, QQuickItem *item, const QImage &image);

} // namespace clockwell
