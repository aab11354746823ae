#pragma once

#include <QColor>
#include <QQuickItem>

namespace clockwell {

/// A filled rectangle with continuous corners and an outline inside its edge. Drawn as a solid middle with
/// eight small images around it, so that a large card costs no more memory than a badge and resizing redraws
/// nothing. Lengths are points; a radius of half the height is a capsule.
class ContinuousRectangle : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(qreal radius MEMBER m_radius WRITE setRadius NOTIFY radiusChanged)
    Q_PROPERTY(QColor color MEMBER m_color WRITE setColor NOTIFY colorChanged)
    Q_PROPERTY(QColor borderColor MEMBER m_borderColor WRITE setBorderColor NOTIFY borderColorChanged)
    Q_PROPERTY(qreal borderWidth MEMBER m_borderWidth WRITE setBorderWidth NOTIFY borderWidthChanged)

public:
    explicit ContinuousRectangle(QQuickItem *parent = nullptr);

    void setRadius(qreal radius);
    void setColor(const QColor &color);
    void setBorderColor(const QColor &color);
    void setBorderWidth(qreal width);

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
    qreal m_radius = 0;
    QColor m_color = Qt::transparent;
    QColor m_borderColor = Qt::transparent;
    qreal m_borderWidth = 0;
};

} // namespace clockwell
