#include "ContinuousRectangle.h"

#include "ImageNode.h"
#include "Superellipse.h"

#include <QPainter>
#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGRectangleNode>
#include <QSGRendererInterface>

#include <algorithm>
#include <array>

namespace clockwell {

namespace {

constexpr int seamPixels = 3;
constexpr int seamMiddle = 1;

/// How one direction of the rectangle is cut into corner, straight side and corner: in points where they are
/// drawn and in pixels of the image they come from. A side too short for a straight piece is drawn whole, in
/// two halves.
struct Cut
{
    Cut(qreal points, qreal reach, qreal ratio)
    {
        const int whole = std::max(1, qRound(points * ratio));
        const int corner = std::max(1, qCeil(reach * ratio));
        const bool straight = whole > 2 * corner + seamPixels;
        pixels = straight ? 2 * corner + seamPixels : whole;
        const qreal first = straight ? corner : whole / 2;
        const qreal last = straight ? corner : whole - whole / 2;
        at = {0, straight ? first / ratio : points * first / whole,
              points - (straight ? last / ratio : points * last / whole), points};
        // Only the middle line of the seam is stretched: its neighbours keep the filter off the corners.
        from = {0, first + seamMiddle, pixels - last};
        length = {first, straight ? 1.0 : 0.0, last};
    }

    int pixels = 0;
    std::array<qreal, 4> at{};
    std::array<qreal, 3> from{};
    std::array<qreal, 3> length{};
};

/// The eight images around the solid middle; all of them show parts of one texture, which the last of them
/// owns. It is also the last to take a new one: until then the renderer may look at the old one through any
/// of the others.
class FrameNode : public QSGNode
{
public:
    explicit FrameNode(QQuickWindow *window) : m_middle(window->createRectangleNode())
    {
        appendChildNode(m_middle);
        // The software renderer's smooth stretching loses a level of colour; a graphics card's does not.
        const bool software = window->rendererInterface()->graphicsApi() == QSGRendererInterface::Software;
        for (QSGImageNode *&part : m_parts) {
            part = window->createImageNode();
            part->setFiltering(software ? QSGTexture::Nearest : QSGTexture::Linear);
            appendChildNode(part);
        }
        m_parts.back()->setOwnsTexture(true);
    }

    void layOut(const Cut &x, const Cut &y, const QColor &fill, QSGTexture *texture)
    {
        m_middle->setRect(area(x, y, 1, 1));
        m_middle->setColor(fill);
        auto part = m_parts.begin();
        for (size_t row = 0; row < 3; ++row) {
            for (size_t column = 0; column < 3; ++column) {
                if (row == 1 && column == 1)
                    continue;
                (*part)->setTexture(texture);
                (*part)->setRect(area(x, y, column, row));
                (*part)->setSourceRect(QRectF(x.from[column], y.from[row], x.length[column], y.length[row]));
                ++part;
            }
        }
    }

private:
    static QRectF area(const Cut &x, const Cut &y, size_t column, size_t row)
    {
        return {QPointF(x.at[column], y.at[row]), QPointF(x.at[column + 1], y.at[row + 1])};
    }

    QSGRectangleNode *m_middle;
    std::array<QSGImageNode *, 8> m_parts{};
};

// The rasteriser rounds to one side; the eye sees that in corners that stand across from each other.
void makeSymmetric(QImage &image)
{
    const int right = image.width() - 1;
    const int bottom = image.height() - 1;
    for (int y = 0; y <= bottom / 2; ++y) {
        for (int x = 0; x <= right / 2; ++x) {
            const auto pixel = reinterpret_cast<const QRgb *>(image.constScanLine(y))[x];
            reinterpret_cast<QRgb *>(image.scanLine(y))[right - x] = pixel;
            reinterpret_cast<QRgb *>(image.scanLine(bottom - y))[x] = pixel;
            reinterpret_cast<QRgb *>(image.scanLine(bottom - y))[right - x] = pixel;
        }
    }
}

template <typename Value>
bool assign(Value &member, const Value &value)
{
    const bool different = member != value;
    member = value;
    return different;
}

} // namespace

ContinuousRectangle::ContinuousRectangle(QQuickItem *parent) : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

void ContinuousRectangle::setRadius(qreal radius)
{
    if (assign(m_radius, radius)) {
        update();
        Q_EMIT radiusChanged();
    }
}

void ContinuousRectangle::setColor(const QColor &color)
{
    if (assign(m_color, color)) {
        update();
        Q_EMIT colorChanged();
    }
}

void ContinuousRectangle::setBorderColor(const QColor &color)
{
    if (assign(m_borderColor, color)) {
        update();
        Q_EMIT borderColorChanged();
    }
}

void ContinuousRectangle::setBorderWidth(qreal width)
{
    if (assign(m_borderWidth, width)) {
        update();
        Q_EMIT borderWidthChanged();
    }
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
    const qreal radius = m_radius * ratio;
    const qreal border = m_borderWidth * ratio;
    const QString name = QStringLiteral("frame %1 %2 %3").arg(radius).arg(border).arg(m_borderColor.rgba());
    const QImage image = cachedImage({name, {x.pixels, y.pixels}, m_color.rgba()}, [&](QImage &drawn) {
        QPainter painter(&drawn);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF shape(0, 0, x.pixels, y.pixels);
        QPainterPath outline = continuousRectangle(shape, radius);
        painter.fillPath(outline, m_color);
        if (border > 0) {
            outline.addPath(
                continuousRectangle(shape.adjusted(border, border, -border, -border), radius - border));
            painter.fillPath(outline, m_borderColor);
        }
        painter.end();
        makeSymmetric(drawn);
    });
    auto *frame = node ? static_cast<FrameNode *>(node) : new FrameNode(window());
    frame->layOut(x, y, m_color, window()->createTextureFromImage(image));
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
