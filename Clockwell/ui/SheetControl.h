#pragma once

#include "DirectedDrag.h"
#include "Modal.h"

#include <QQmlComponent>

namespace clockwell {

/// A sheet without its looks: a Modal whose content is built afresh each time that it opens and destroyed
/// when it has closed, and that can be dragged down by its panel, or by a content that is scrolled to its
/// top, with finger or mouse. Let go beyond a third of the panel's height, or with a flick, it asks to go;
/// otherwise it springs back. Main thread only.
class SheetControl : public clockwell::Modal // in full: Qt 6.4's type registrar takes it literally
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQmlComponent *content READ content WRITE setContent NOTIFY contentChanged)
    /// Where the content goes, and which it fills; not owned.
    Q_PROPERTY(QQuickItem *holder READ holder WRITE setHolder NOTIFY holderChanged)

public:
    /// Let go at this speed downwards it goes, however far it was dragged; points per second.
    static constexpr qreal flick = 600;

    explicit SheetControl(QQuickItem *parent = nullptr);

    QQmlComponent *content() const { return m_content; }
    void setContent(QQmlComponent *content);
    QQuickItem *holder() const { return m_holder; }
    void setHolder(QQuickItem *holder);

Q_SIGNALS:
    void contentChanged();
    void holderChanged();

protected:
    void aboutToOpen() override;
    void hasClosed() override;
    bool childMouseEventFilter(QQuickItem *item, QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseUngrabEvent() override;
    void touchEvent(QTouchEvent *event) override;
    void touchUngrabEvent() override;

private:
    /// Whether the event is part of a drag of the sheet. `pressed` is the item that the pointer went down on.
    bool follow(QPointerEvent *event, const QQuickItem *pressed);
    void begin(const QPointF &position, quint64 time, const QQuickItem *pressed);
    void letGo(qreal velocity);
    void cancel();
    void fillHolder();

    QPointer<QQmlComponent> m_content;
    QPointer<QQuickItem> m_holder;
    QPointer<QQuickItem> m_item; // owned by the holder
    DirectedDrag m_drag{DirectedDrag::Direction::Down};
    qreal m_way = 1; // from open to closed, in points
};

} // namespace clockwell
