#pragma once

#include "DirectedDrag.h"

#include <QQuickItem>
#include <QUrl>
#include <QVariantAnimation>
#include <QtQml/qqmlregistration.h>

#include <functional>

namespace clockwell {

/// Screens on top of each other, of which only the topmost is shown. A pushed screen slides in from the
/// trailing edge and is popped by its own `back` signal, if it has one. A finger or mouse that drags it from
/// its left edge pulls it aside; let go beyond half of the way, or with a flick, that is its `back` signal
/// too, else it springs back. Screens are named by file, so that one costs nothing before it is shown. While
/// screens change places, pointers are not taken, and the keyboard's focus stays in the topmost. Main thread.
///
/// Qt's own stack would do, but it comes with all of Qt's control templates, and registering those is a tenth
/// of the app's whole start.
class ScreenStack : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    /// The lowest screen, for a stack that begins with one.
    Q_PROPERTY(QQuickItem *initialItem MEMBER m_initialItem)
    /// The topmost screen; null while there is none.
    Q_PROPERTY(QQuickItem *currentItem READ currentItem NOTIFY currentItemChanged)
    Q_PROPERTY(int depth READ depth NOTIFY currentItemChanged)
    Q_PROPERTY(bool busy READ isBusy NOTIFY busyChanged)
    /// Of a change of screens, in milliseconds; 0 changes at once.
    Q_PROPERTY(int duration MEMBER m_duration)

public:
    /// A drag that begins this near to the left edge pulls the screen; points.
    static constexpr qreal edge = 24;
    /// Let go at this speed it goes back, however far it was pulled; points per second.
    static constexpr qreal flick = 600;

    explicit ScreenStack(QQuickItem *parent = nullptr);
    ~ScreenStack() override;

    QQuickItem *currentItem() const { return m_screens.isEmpty() ? nullptr : m_screens.last(); }
    int depth() const { return static_cast<int>(m_screens.size()); }
    bool isBusy() const { return m_busy; }
    /// Whether the item is one of the screens, shown or covered; not one that is on its way out.
    bool holds(const QQuickItem *screen) const { return m_screens.contains(screen); }

    /// `properties` are set before the screen is complete, required ones among them. A file that cannot be
    /// loaded leaves the stack as it is, with a warning.
    Q_INVOKABLE void push(const QUrl &file, const QVariantMap &properties = {});
    /// Takes the topmost screen away, unless it is the only one.
    Q_SLOT void pop();
    /// Takes all screens away in favour of a new one; animated, the new one fades in.
    Q_INVOKABLE void replace(const QUrl &file, const QVariantMap &properties, bool animated);

Q_SIGNALS:
    void currentItemChanged();
    void busyChanged();

protected:
    void componentComplete() override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;
    void geometryChange(const QRectF &now, const QRectF &before) override;
    bool childMouseEventFilter(QQuickItem *item, QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseUngrabEvent() override;
    void touchEvent(QTouchEvent *event) override;
    void touchUngrabEvent() override;

private:
    using Step = std::function<void(qreal)>;

    static bool hasWayBack(const QQuickItem *screen);
    QQuickItem *load(const QUrl &file, const QVariantMap &properties);
    void add(QQuickItem *screen);
    void focusTop();
    /// Takes the focus back from a screen that is still, or already, to be seen beside the topmost.
    void keepFocus();
    /// Runs `step` from 0 to 1, then `end`; a change that still runs is brought to its end first.
    void change(int duration, Step step, std::function<void()> end);
    void finish();
    void setBusy(bool busy);
    /// Where the topmost screen is and the one below, 0 in place to 1 away.
    void place(QQuickItem *top, QQuickItem *below, qreal part);

    /// Whether the event is part of a swipe.
    bool follow(QPointerEvent *event);
    bool maySwipe(const QPointF &position) const;
    void beginSwipe();
    void letGo(qreal velocity);
    void springBack();
    /// Ends the swipe, if there is one, or brings a running change to its end; the part of the way back that
    /// is done.
    qreal takeSwipe();

    QQuickItem *m_initialItem = nullptr;
    QList<QQuickItem *> m_screens; // children, the topmost last
    QVariantAnimation m_animation;
    std::function<void()> m_end;
    QMetaObject::Connection m_focus;
    DirectedDrag m_drag{DirectedDrag::Direction::Right};
    int m_duration = 0;
    bool m_swiping = false;
    bool m_busy = false;
};

} // namespace clockwell
