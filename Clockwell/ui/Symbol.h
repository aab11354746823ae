#pragma once

#include <QColor>
#include <QQuickItem>

namespace clockwell {

/// A named symbol, tinted, crisp at every size and pixel ratio. Decoration: it is not in the accessibility
/// tree, what it means has to be said in words beside it. A name that is not in the symbol table draws
/// nothing.
class Symbol : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString name MEMBER m_name WRITE setName NOTIFY nameChanged REQUIRED)
    Q_PROPERTY(qreal size MEMBER m_size WRITE setSize NOTIFY sizeChanged)
    Q_PROPERTY(QColor color MEMBER m_color WRITE setColor NOTIFY colorChanged)

public:
    explicit Symbol(QQuickItem *parent = nullptr);

    void setName(const QString &name);
    /// Side of the square that holds the symbol, in points.
    void setSize(qreal size);
    void setColor(const QColor &color);

Q_SIGNALS:
    void nameChanged();
    void sizeChanged();
    void colorChanged();

protected:
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;
    void geometryChange(const QRectF &now, const QRectF &before) override;

private:
    QString m_name;
    qreal m_size = 24;
    QColor m_color;
};

} // namespace clockwell
