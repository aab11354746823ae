#pragma once

#include <QColor>
#include <QQuickItem>

namespace clockwell {

/// A filled rectangle with continuous corners and an outline inside its edge. Drawn as one small picture of
/// which only the middle is stretched, so that a large card costs no more memory than a badge. Lengths are
/// points; a radius of half the height is a capsule.
class ContinuousRectangle : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(qreal radius MEMBER m_radius NOTIFY radiusChanged)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY colorChanged)
    Q_PROPERTY(QColor borderColor MEMBER m_borderColor NOTIFY borderColorChanged)
    Q_PROPERTY(qreal borderWidth MEMBER m_borderWidth NOTIFY borderWidthChanged)

public:
    explicit ContinuousRectangle(QQuickItem *parent = nullptr);

Q_SIGNALS:
    void radiusChanged();
    void colorChanged();
    void borderColorChanged();
    void borderWidthChanged();

protected:
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;
    void geometryChange(const QRectF &now, const QRectF &before) override;

private:
    /// The small picture, in this many pixels.
    QImage picture(QSize pixels, qreal ratio) const;

    qreal m_radius = 0;
    QColor m_color = Qt::transparent;
    QColor m_borderColor = Qt::transparent;
    qreal m_borderWidth = 0;
};

} // namespace clockwell
