#pragma once

#include <QBasicTimer>
#include <QColor>
#include <QQuickItem>

namespace clockwell {

/// The busy indicator: eight spokes, the brightest of which moves on ten times a second. Stepping instead of
/// turning keeps it sharp and costs ten small repaints a second; it stands still while it is not shown, and
/// wherever the desktop asks for reduced motion.
class Spinner : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(qreal size MEMBER m_size WRITE setSize NOTIFY sizeChanged)
    Q_PROPERTY(QColor color MEMBER m_color WRITE setColor NOTIFY colorChanged)
    Q_PROPERTY(bool still MEMBER m_still WRITE setStill NOTIFY stillChanged)
    Q_PROPERTY(int step READ step NOTIFY stepChanged)

public:
    explicit Spinner(QQuickItem *parent = nullptr);

    /// Side of the square that holds the spokes, in points.
    void setSize(qreal size);
    void setColor(const QColor &color);
    void setStill(bool still);
    int step() const { return m_step; }

Q_SIGNALS:
    void sizeChanged();
    void colorChanged();
    void stillChanged();
    void stepChanged();

protected:
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;
    void geometryChange(const QRectF &now, const QRectF &before) override;
    void timerEvent(QTimerEvent *event) override;

private:
    void startOrStop();

    qreal m_size = 20;
    QColor m_color = Qt::white;
    bool m_still = false;
    int m_step = 0;
    QBasicTimer m_timer;
};

} // namespace clockwell
