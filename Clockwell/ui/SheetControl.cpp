#include "SheetControl.h"

#include "BuildItem.h"

#include <QMouseEvent>
#include <QTouchEvent>

#include <algorithm>
#include <utility>

namespace clockwell {

namespace {

/// Whether what stands around `item`, up to `limit`, can be scrolled up: then a drag downwards does that.
bool canScrollUp(const QQuickItem *item, const QQuickItem *limit)
{
    for (; item && item != limit; item = item->parentItem()) {
        if (!item->inherits("QQuickFlickable"))
            continue;
        const qreal top = item->property("originY").toReal() - item->property("topMargin").toReal();
        if (item->property("contentY").toReal() > top + 0.5)
            return true;
    }
    return false;
}

} // namespace

SheetControl::SheetControl(QQuickItem *parent) : Modal(parent)
{
    connect(this, &Modal::shownChanged, this, &SheetControl::cancel);
}

void SheetControl::setContent(QQmlComponent *content)
{
    if (content == m_content)
        return;
    m_content = content;
    Q_EMIT contentChanged();
}

void SheetControl::setHolder(QQuickItem *holder)
{
    if (holder == m_holder || m_holder)
        return;
    m_holder = holder;
    connect(holder, &QQuickItem::widthChanged, this, &SheetControl::fillHolder);
    connect(holder, &QQuickItem::heightChanged, this, &SheetControl::fillHolder);
    Q_EMIT holderChanged();
}

void SheetControl::fillHolder()
{
    if (m_item)
        m_item->setSize(m_holder->size());
}

void SheetControl::aboutToOpen()
{
    hasClosed(); // opened again before it had closed
    if (m_holder)
        m_item = buildItem(m_content, m_holder);
}

void SheetControl::hasClosed()
{
    if (QQuickItem *item = std::exchange(m_item, nullptr)) {
        item->setVisible(false);
        item->deleteLater(); // it may be the sender of the signal that leads here
    }
}

bool SheetControl::childMouseEventFilter(QQuickItem *item, QEvent *event)
{
    if (Modal::childMouseEventFilter(item, event))
        return true;
    return event->isPointerEvent() && !item->keepMouseGrab() && !item->keepTouchGrab() &&
           follow(static_cast<QPointerEvent *>(event), item);
}

void SheetControl::mousePressEvent(QMouseEvent *event)
{
    Modal::mousePressEvent(event);
    follow(event, this);
}

void SheetControl::mouseMoveEvent(QMouseEvent *event)
{
    follow(event, this);
}

void SheetControl::mouseReleaseEvent(QMouseEvent *event)
{
    if (!follow(event, this))
        Modal::mouseReleaseEvent(event);
}

void SheetControl::touchEvent(QTouchEvent *event)
{
    event->accept();
    if (event->type() == QEvent::TouchCancel)
        cancel();
    else if (!follow(event, this))
        Modal::touchEvent(event);
}

void SheetControl::mouseUngrabEvent()
{
    cancel();
}

void SheetControl::touchUngrabEvent()
{
    cancel();
}

bool SheetControl::follow(QPointerEvent *event, const QQuickItem *pressed)
{
    if (event->pointCount() != 1 || isBusy() || !isShown())
        return false;
    const QEventPoint &point = event->point(0);
    const QPointF position = mapFromScene(point.scenePosition());
    if (point.state() == QEventPoint::Pressed) {
        begin(position, event->timestamp(), pressed);
        return false;
    }
    if (point.state() == QEventPoint::Released) {
        if (!m_drag.end())
            return false;
        letGo(m_drag.velocityAt(event->timestamp()));
        return true;
    }
    const bool wasRunning = m_drag.isRunning();
    if (!m_drag.moveTo(position, event->timestamp()))
        return false;
    if (!wasRunning)
        event->setExclusiveGrabber(point, this);
    setOpenness(std::clamp(1 - m_drag.distance() / m_way, 0.0, 1.0));
    return true;
}

void SheetControl::begin(const QPointF &position, quint64 time, const QQuickItem *pressed)
{
    if (m_drag.isRunning()) { // its end never came, as when the window was hidden under the finger
        cancel();
        return;
    }
    m_way = std::max(1.0, panel() ? height() - panel()->y() : height());
    m_drag.end();
    if (isOnPanel(position) && !canScrollUp(pressed, this))
        m_drag.begin(position, time);
}

void SheetControl::letGo(qreal velocity)
{
    constexpr qreal farEnough = 1.0 / 3;
    if (velocity > flick || openness() < 1 - farEnough)
        dismiss();
    if (isShown())
        moveTo(1);
}

void SheetControl::cancel()
{
    if (m_drag.end() && isShown())
        moveTo(1);
}

} // namespace clockwell
