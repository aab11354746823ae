#include "PullToRefreshControl.h"

#include "PullToRefreshAccessible.h"

#include <QTimerEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace clockwell {

namespace {

constexpr qreal resistance = 0.5;       // as a Flickable's own beyond its bounds
constexpr qreal wheelNotch = 48;        // points
constexpr qreal longestWheelPull = 240; // before resistance

qreal distanceOf(const QWheelEvent &event)
{
    return event.pixelDelta().isNull() ? event.angleDelta().y() / 120.0 * wheelNotch : event.pixelDelta().y();
}

} // namespace

PullToRefreshControl::PullToRefreshControl(QQuickItem *parent) : QQuickItem(parent)
{
    installPullToRefreshAccessible();
    m_slide.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_slide, &QVariantAnimation::valueChanged, this,
            [this](const QVariant &value) { moveTo(value.toReal()); });
}

void PullToRefreshControl::setFlickable(QQuickItem *flickable)
{
    if (flickable == m_flickable || m_flickable || !flickable)
        return;
    m_flickable = flickable;
    m_margin = flickable->property("topMargin").toReal();
    flickable->installEventFilter(this);
    // The class of a Flickable is private to Qt; its signals and properties are not.
    connect(flickable, SIGNAL(contentYChanged()), this, SLOT(updatePull()));
    connect(flickable, SIGNAL(originYChanged()), this, SLOT(updatePull()));
    connect(flickable, SIGNAL(draggingChanged()), this, SLOT(letGo()));
    Q_EMIT flickableChanged();
}

void PullToRefreshControl::setRefreshing(bool refreshing)
{
    if (refreshing == m_refreshing)
        return;
    m_refreshing = refreshing;
    if (refreshing)
        holdBelowTop();
    else
        slideToTop();
    Q_EMIT refreshingChanged();
    Q_EMIT pullChanged();
    announceRefreshing(this);
}

QString PullToRefreshControl::label() const
{
    return m_refreshing ? QStringLiteral("Refreshing") : QStringLiteral("Refresh");
}

void PullToRefreshControl::refresh()
{
    if (canRefresh())
        Q_EMIT triggered();
}

qreal PullToRefreshControl::top() const
{
    return m_flickable->property("originY").toReal();
}

bool PullToRefreshControl::isDragging() const
{
    return m_flickable->property("dragging").toBool();
}

void PullToRefreshControl::updatePull()
{
    const qreal pull = std::max(0.0, top() - m_margin - m_flickable->property("contentY").toReal());
    if (!qFuzzyCompare(pull + 1, m_pull + 1)) {
        m_pull = pull;
        Q_EMIT pullChanged();
    }
}

void PullToRefreshControl::letGo()
{
    const bool wasDragged = std::exchange(m_dragged, isDragging());
    if (m_dragged) {
        m_slide.stop();
        m_wheelTimer.stop();
        m_wheelPull = 0;
    } else if (wasDragged && m_pull >= threshold) {
        m_lettingGo = true;
        refresh();
        m_lettingGo = false;
    }
}

// A Flickable brings itself back to its bounds when it is let go, and these now begin at the resting place.
// Where nothing is being let go the content slides there.
void PullToRefreshControl::holdBelowTop()
{
    if (!m_flickable)
        return;
    updatePull();
    const QVariant place = m_flickable->property("contentY");
    const bool atTop = place.toReal() <= top() - m_margin;
    setMargin(m_rest);
    if (m_lettingGo && m_duration <= 0) {
        QMetaObject::invokeMethod(
            this, [this] { m_refreshing ? moveTo(m_rest) : void(); }, Qt::QueuedConnection);
    } else if (atTop && !m_lettingGo && !isDragging()) {
        m_flickable->setProperty("contentY", place); // content that is all in view jumps into its new bounds
        slide(m_rest);
    }
}

void PullToRefreshControl::slideToTop()
{
    if (!m_flickable)
        return;
    updatePull();
    m_slide.stop(); // it may only just have begun to move the content down
    if (m_pull > 0 && !isDragging())
        slide(0);
    else
        setMargin(0);
}

void PullToRefreshControl::slide(qreal to)
{
    m_slide.stop();
    if (m_duration <= 0) {
        moveTo(to);
        return;
    }
    m_slide.setDuration(m_duration);
    m_slide.setStartValue(m_pull);
    m_slide.setEndValue(to);
    m_slide.start();
}

void PullToRefreshControl::moveTo(qreal beyondTop)
{
    if (!m_flickable)
        return;
    const qreal pixels = std::round(beyondTop);
    m_flickable->setProperty("contentY", top() - m_margin - pixels);
    if (!m_refreshing && pixels <= 0)
        setMargin(0);
}

void PullToRefreshControl::setMargin(qreal more)
{
    m_flickable->setProperty("topMargin", m_margin + more);
}

bool PullToRefreshControl::eventFilter(QObject *watched, QEvent *event)
{
    return event->type() == QEvent::Wheel && watched == m_flickable &&
           takeWheel(*static_cast<QWheelEvent *>(event));
}

/// Whether the event pulls; otherwise it is the Flickable's.
bool PullToRefreshControl::takeWheel(const QWheelEvent &event)
{
    if (!canRefresh() || isDragging())
        return false;
    if (event.phase() == Qt::ScrollEnd && m_wheelPull > 0) {
        letWheelGo();
        return true;
    }
    const bool atTop = m_flickable->property("contentY").toReal() <= top() - m_margin;
    const bool rested = !m_wheelElsewhere.isValid() || m_wheelElsewhere.hasExpired(wheelPause);
    const qreal distance = distanceOf(event);
    const bool pulls = event.phase() != Qt::ScrollMomentum && atTop && rested && distance > 0;
    if (m_wheelPull <= 0 && !pulls) {
        if (!qFuzzyIsNull(distance))
            m_wheelElsewhere.start();
        return false;
    }
    if (event.phase() == Qt::ScrollMomentum)
        return true; // of a pull that has been let go
    m_slide.stop();
    m_wheelPull = std::clamp(m_wheelPull + distance, 0.0, longestWheelPull);
    m_wheelTimer.start(wheelSilence, this);
    moveTo(m_wheelPull * resistance);
    return true;
}

void PullToRefreshControl::letWheelGo()
{
    m_wheelTimer.stop();
    m_wheelPull = 0;
    if (m_pull >= threshold)
        refresh();
    if (!m_refreshing)
        slideToTop();
}

void PullToRefreshControl::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_wheelTimer.timerId())
        letWheelGo();
    else
        QQuickItem::timerEvent(event);
}

void PullToRefreshControl::itemChange(ItemChange change, const ItemChangeData &data)
{
    if ((change == ItemEnabledHasChanged || change == ItemVisibleHasChanged) && !data.boolValue &&
        m_wheelPull > 0)
        letWheelGo(); // canRefresh() says no
    QQuickItem::itemChange(change, data);
}

} // namespace clockwell
