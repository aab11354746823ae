#include "ContinuousRectangle.h"

#include "Superellipse.h"

#include <QCache>
#include <QPainter>
#include <QPointer>
#include <QQuickWindow>
#include <QSGNinePatchNode>
#include <QSGRendererInterface>
#include <QSGTexture>

#include <algorithm>

namespace clockwell {

namespace {

constexpr qsizetype cacheBytes = 1024 * 1024;

/// One direction of the rectangle, in pixels of the screen: its length, that of the picture, and how much of
/// the picture's ends is not stretched. A side too short for a straight piece is drawn whole.
struct Cut
{
    Cut(qreal points, qreal reach, qreal ratio) : whole(std::max(1, qRound(points * ratio)))
    {
        // Between the ends, one line is stretched; one more at each side keeps the filter off the corners.
        const int end = qCeil(reach * ratio) + 1;
        const bool stretched = whole > 2 * end + 1;
        kept = stretched ? end : 0;
        drawn = stretched ? 2 * end + 1 : whole;
    }

    int whole;
    int drawn;
    int kept;
};

/// A nine-patch in pixels, because Qt 6.4's software renderer takes its padding for points.
class FrameNode : public QSGTransformNode
{
public:
    explicit FrameNode(QQuickWindow *window) : m_window(window), m_patch(window->createNinePatchNode())
    {
        appendChildNode(m_patch);
    }

    void layOut(const Cut &x, const Cut &y, QSizeF size, const QImage &picture)
    {
        QMatrix4x4 toPoints;
        toPoints.scale(static_cast<float>(size.width() / x.whole),
                       static_cast<float>(size.height() / y.whole));
        setMatrix(toPoints);
        const QPointer<QSGTexture> texture = m_window->createTextureFromImage(picture);
        m_patch->setTexture(texture);
        if (m_window->rendererInterface()->graphicsApi() == QSGRendererInterface::Software)
            delete texture; // where Qt has not done so: it copied the picture
        m_patch->setBounds(QRectF(0, 0, x.whole, y.whole));
        m_patch->setPadding(x.kept, y.kept, x.kept, y.kept);
        m_patch->setDevicePixelRatio(1);
        m_patch->update();
    }

private:
    QQuickWindow *m_window;
    QSGNinePatchNode *m_patch;
};

// The rasteriser rounds to one side; the eye sees that in corners that stand across from each other.
void makeSymmetric(QImage &image)
{
    const QImage quarter = image.copy(0, 0, (image.width() + 1) / 2, (image.height() + 1) / 2);
    const QPoint opposite(image.width() - quarter.width(), image.height() - quarter.height());
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(QPoint(opposite.x(), 0), quarter.mirrored(true, false));
    painter.drawImage(QPoint(0, opposite.y()), quarter.mirrored(false, true));
    painter.drawImage(opposite, quarter.mirrored(true, true));
}

} // namespace

ContinuousRectangle::ContinuousRectangle(QQuickItem *parent) : QQuickItem(parent)
{
    setFlag(ItemHasContents);
    using Self = ContinuousRectangle;
    for (const auto changed :
         {&Self::radiusChanged, &Self::colorChanged, &Self::borderColorChanged, &Self::borderWidthChanged})
        connect(this, changed, this, &QQuickItem::update);
}

QImage ContinuousRectangle::picture(QSize pixels, qreal ratio) const
{
    // Only updatePaintNode() calls this, where the main thread waits, so that the one cache needs no lock.
    static QCache<QString, QImage> cache(cacheBytes);
    const qreal radius = m_radius * ratio;
    const qreal border = m_borderWidth * ratio;
    const QString key = QStringLiteral("%1 %2 %3 %4 %5 %6")
                            .arg(pixels.width())
                            .arg(pixels.height())
                            .arg(radius)
                            .arg(border)
                            .arg(m_color.rgba())
                            .arg(m_borderColor.rgba());
    if (const QImage *known = cache.object(key))
        return *known;
    QImage drawn(pixels, QImage::Format_ARGB32_Premultiplied);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF shape(QPointF(), pixels);
    QPainterPath outline = continuousRectangle(shape, radius);
    painter.fillPath(outline, m_color);
    if (border > 0) {
        outline.addPath(
            continuousRectangle(shape.adjusted(border, border, -border, -border), radius - border));
        painter.fillPath(outline, m_borderColor);
    }
    painter.end();
    makeSymmetric(drawn);
    cache.insert(key, new QImage(drawn), drawn.sizeInBytes());
    return drawn;
}

QSGNode *ContinuousRectangle::updatePaintNode(QSGNode *node, UpdatePaintNodeData *)
{
    if (size().isEmpty()) {
        delete node;
        return nullptr;
    }
    const qreal ratio = window()->effectiveDevicePixelRatio();
    const qreal reach = std::max(continuousCornerExtent(size(), m_radius), m_borderWidth);
    const Cut x(width(), reach, ratio);
    const Cut y(height(), reach, ratio);
    auto *frame = node ? static_cast<FrameNode *>(node) : new FrameNode(window());
    frame->layOut(x, y, size(), picture({x.drawn, y.drawn}, ratio));
    return frame;
}

void ContinuousRectangle::itemChange(ItemChange change, const ItemChangeData &data)
{
    if (change == ItemDevicePixelRatioHasChanged)
        update();
    QQuickItem::itemChange(change, data);
}

void ContinuousRectangle::geometryChange(const QRectF &now, const QRectF &before)
{
    update();
    QQuickItem::geometryChange(now, before);
}

} // namespace clockwell
