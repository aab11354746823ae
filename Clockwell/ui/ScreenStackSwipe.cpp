#include "Modal.h"
#include "ScreenStack.h"

#include <QMouseEvent>
#include <QTouchEvent>

#include <algorithm>

// The way back by a drag from the edge.

namespace clockwell {

bool ScreenStack::childMouseEventFilter(QQuickItem *item, QEvent *event)
{
    const bool taken = event->isPointerEvent() && !item->keepMouseGrab() && !item->keepTouchGrab() &&
                       follow(static_cast<QPointerEvent *>(event));
    return taken || m_busy;
}

void ScreenStack::mousePressEvent(QMouseEvent *event)
{
    follow(event);
    event->setAccepted(maySwipe(event->position())); // else it is nobody's here
}

void ScreenStack::mouseMoveEvent(QMouseEvent *event)
{
    follow(event);
}

void ScreenStack::mouseReleaseEvent(QMouseEvent *event)
{
    follow(event);
}

void ScreenStack::touchEvent(QTouchEvent *event)
{
    if (event->type() == QEvent::TouchCancel)
        springBack();
    else
        follow(event);
    event->setAccepted(event->type() != QEvent::TouchBegin || maySwipe(event->point(0).position()));
}

void ScreenStack::mouseUngrabEvent()
{
    springBack();
}

void ScreenStack::touchUngrabEvent()
{
    springBack();
}

bool ScreenStack::follow(QPointerEvent *event)
{
    if (event->pointCount() != 1) { // a second finger makes it something else
        m_drag.end();
        springBack();
        return false;
    }
    const QEventPoint &point = event->point(0);
    const QPointF position = mapFromScene(point.scenePosition());
    if (point.state() == QEventPoint::Pressed) {
        m_drag.end();
        springBack(); // from a swipe whose end never came, as when the window was hidden under the finger
        if (maySwipe(position))
            m_drag.begin(position, event->timestamp());
        return false;
    }
    if (point.state() == QEventPoint::Released) {
        if (!m_drag.end())
            return false;
        letGo(m_drag.velocityAt(event->timestamp()));
        return true;
    }
    if (!m_drag.moveTo(position, event->timestamp()))
        return false;
    if (!m_swiping) {
        beginSwipe();
        event->setExclusiveGrabber(point, this);
    }
    const qreal part = std::clamp(m_drag.distance() / std::max(1.0, width()), 0.0, 1.0);
    place(currentItem(), m_screens.at(m_screens.size() - 2), part);
    return true;
}

bool ScreenStack::maySwipe(const QPointF &position) const
{
    return position.x() <= edge && depth() > 1 && !m_busy && hasWayBack(currentItem()) &&
           !Modal::covers(currentItem());
}

void ScreenStack::beginSwipe()
{
    QQuickItem *top = currentItem();
    QQuickItem *below = m_screens.at(m_screens.size() - 2);
    m_swiping = true;
    below->setVisible(true);
    setBusy(true);
    m_end = [this, top, below] { // whatever comes in between finds both in their places
        place(top, below, 0);
        below->setVisible(false);
    };
}

void ScreenStack::letGo(qreal velocity)
{
    constexpr qreal farEnough = 0.5;
    QQuickItem *top = currentItem();
    const bool far = velocity > -flick && top->x() > farEnough * width();
    if ((far || velocity > flick) && !Modal::covers(top)) // one that opened meanwhile has the say
        QMetaObject::invokeMethod(top, "back");
    springBack(); // unless it went
}

void ScreenStack::springBack()
{
    if (!m_swiping)
        return;
    const qreal from = takeSwipe();
    QQuickItem *top = currentItem();
    QQuickItem *below = m_screens.at(m_screens.size() - 2);
    const auto step = [=, this](qreal part) { place(top, below, from * (1 - part)); };
    change(static_cast<int>(m_duration * from), step, [below] { below->setVisible(false); });
}

qreal ScreenStack::takeSwipe()
{
    const qreal part = m_swiping ? currentItem()->x() / std::max(1.0, width()) : 0;
    if (m_swiping)
        m_end = nullptr;
    finish();
    return part;
}

} // namespace clockwell
