#include "ImageNode.h"

#include <QCache>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSGImageNode>

#include <memory>

namespace clockwell {

namespace {

constexpr qsizetype cacheBytes = 2 * 1024 * 1024;

} // namespace

size_t qHash(const ImageKey &key, size_t seed = 0)
{
    return qHashMulti(seed, key.name, key.pixels.width(), key.pixels.height(), key.color);
}

QImage cachedImage(const ImageKey &key, const std::function<void(QImage &)> &paint)
{
    static QCache<ImageKey, QImage> cache(cacheBytes);
    if (const QImage *known = cache.object(key))
        return *known;
    auto image = std::make_unique<QImage>(key.pixels, QImage::Format_ARGB32_Premultiplied);
    image->fill(Qt::transparent);
    paint(*image);
    const QImage result = *image;
    cache.insert(key, image.release(), result.sizeInBytes());
    return result;
}

QSGNode *updateImageNode(QSGNode *node, QQuickItem *item, const QImage &image)
{
    if (image.isNull()) {
        delete node;
        return nullptr;
    }
    auto *imageNode = static_cast<QSGImageNode *>(node);
    if (!imageNode) {
        imageNode = item->window()->createImageNode();
        imageNode->setOwnsTexture(true);
        imageNode->setFiltering(QSGTexture::Linear);
    }
    imageNode->setTexture(item->window()->createTextureFromImage(image));
    imageNode->setSourceRect(QRectF(image.rect()));
    const qreal ratio = item->window()->effectiveDevicePixelRatio();
    const QSizeF free = item->size() * ratio - image.size();
    const QPointF corner(qRound(free.width() / 2), qRound(free.height() / 2));
    imageNode->setRect(QRectF(corner / ratio, QSizeF(image.size()) / ratio));
    return imageNode;
}

} // namespace clockwell
