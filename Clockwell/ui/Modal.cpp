#include "Modal.h"

#include "ModalAccessible.h"
#include "ScreenStack.h"

#include <QCursor>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QQuickWindow>
#include <QTimerEvent>
#include <QWheelEvent>

#include <utility>

namespace clockwell {

namespace {

/// The screen on the outermost stack that `item` is part of; where there is no stack, the window's own
/// content.
QQuickItem *outermostScreen(QQuickItem *item)
{
    QQuickItem *screen = nullptr;
    QQuickItem *child = item;
    for (QQuickItem *parent = item->parentItem(); parent; child = parent, parent = parent->parentItem())
        if (qobject_cast<ScreenStack *>(parent) || (!screen && !parent->parentItem()))
            screen = child;
    return screen ? screen : item;
}

// More than any window has items: a bound, not a limit.
constexpr int mostSteps = 100000;

} // namespace

Modal::Modal(QQuickItem *parent) : QQuickItem(parent)
{
    installModalAccessible();
    setFlag(ItemIsFocusScope);
    setVisible(false);
    setZ(1);
    setAcceptedMouseButtons(Qt::AllButtons);
    setAcceptTouchEvents(true);
    setAcceptHoverEvents(true);
    setFiltersChildMouseEvents(true);
    setCursor(Qt::ArrowCursor);
    m_motion.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_motion, &QVariantAnimation::valueChanged, this,
            [this](const QVariant &value) { setOpenness(value.toReal()); });
    connect(&m_motion, &QAbstractAnimation::finished, this, &Modal::arrive);
}

Modal::~Modal()
{
    openModals().removeOne(this);
}

void Modal::setShown(bool shown)
{
    if (shown == m_shown)
        return;
    m_shown = shown;
    if (isComponentComplete())
        shown ? open() : close();
    Q_EMIT shownChanged();
}

void Modal::setPanel(QQuickItem *panel)
{
    if (panel == m_panel)
        return;
    m_panel = panel;
    Q_EMIT panelChanged();
}

void Modal::componentComplete()
{
    QQuickItem::componentComplete();
    openSoon();
}

void Modal::itemChange(ItemChange change, const ItemChangeData &data)
{
    QQuickItem::itemChange(change, data);
    if (change == ItemSceneChange && data.window && isComponentComplete())
        openSoon();
}

/// Once it is part of its screen.
void Modal::openSoon()
{
    if (m_shown)
        QMetaObject::invokeMethod(
            this, [this] { m_shown ? open() : void(); }, Qt::QueuedConnection);
}

void Modal::accept()
{
    if (m_shown)
        Q_EMIT accepted();
}

void Modal::dismiss()
{
    if (m_shown)
        Q_EMIT dismissed();
}

void Modal::open()
{
    if (m_open || !window() || isLeaving()) // what it has to say would be gone before it can be read
        return;
    m_open = true;
    if (!m_home)
        m_home = parentItem();
    m_host = outermostScreen(m_home);
    setParentItem(m_host);
    connect(m_host, &QQuickItem::widthChanged, this, &Modal::fillHost, Qt::UniqueConnection);
    connect(m_host, &QQuickItem::heightChanged, this, &Modal::fillHost, Qt::UniqueConnection);
    fillHost();
    aboutToOpen();
    openModals().append(this);
    window()->installEventFilter(this);
    if (QQuickItem *grabber = window()->mouseGrabberItem()) // its press began before: it leads nowhere now
        grabber->ungrabMouse();
    setVisible(true);
    if (isInFront())
        takeFocus();
    m_settling.start(settling, this);
    moveTo(1);
    announceModal(this, true);
}

void Modal::close()
{
    if (!m_open)
        return;
    m_open = false;
    openModals().removeOne(this);
    if (window())
        window()->removeEventFilter(this);
    giveFocusBack();
    m_settling.stop();
    moveTo(0);
    announceModal(this, false);
}

void Modal::fillHost()
{
    if (m_host)
        setSize(m_host->size());
}

void Modal::takeFocus()
{
    m_returnFocus = window()->activeFocusItem();
    m_returnFocusVisible = m_returnFocus && m_returnFocus->property("focusVisible").toBool();
    // Whoever got here by the keyboard goes on by the keyboard, and has to see where.
    const auto reason = m_returnFocusVisible ? Qt::TabFocusReason : Qt::PopupFocusReason;
    (m_firstFocus ? m_firstFocus.data() : this)->forceActiveFocus(reason);
}

void Modal::giveFocusBack()
{
    if (hasFocusInside() && m_returnFocus && m_returnFocus->window() == window())
        m_returnFocus->forceActiveFocus(m_returnFocusVisible ? Qt::ShortcutFocusReason
                                                             : Qt::PopupFocusReason);
    m_returnFocus = nullptr;
}

bool Modal::hasFocusInside() const
{
    const QQuickItem *focused = window() ? window()->activeFocusItem() : nullptr;
    return focused && (focused == this || isAncestorOf(focused));
}

void Modal::moveTo(qreal openness)
{
    m_motion.stop();
    if (m_duration <= 0) {
        setOpenness(openness);
        arrive();
        return;
    }
    m_motion.setDuration(m_duration);
    m_motion.setStartValue(m_openness);
    m_motion.setEndValue(openness);
    m_motion.start();
    updateBusy();
}

void Modal::setOpenness(qreal openness)
{
    if (qFuzzyCompare(openness + 1, m_openness + 1))
        return;
    m_openness = openness;
    Q_EMIT opennessChanged();
}

void Modal::arrive()
{
    updateBusy();
    if (m_open)
        return;
    setVisible(false);
    if (m_host)
        m_host->disconnect(this);
    hasClosed();
}

void Modal::updateBusy()
{
    const bool busy = m_motion.state() == QAbstractAnimation::Running || m_settling.isActive();
    if (busy == m_busy)
        return;
    m_busy = busy;
    Q_EMIT busyChanged();
}

void Modal::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_settling.timerId())
        return QQuickItem::timerEvent(event);
    m_settling.stop();
    updateBusy();
}

bool Modal::eventFilter(QObject *, QEvent *event)
{
    const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
    if (!isKey || topmostOf(window()) != this)
        return false;
    if (!hasFocusInside())
        forceActiveFocus(Qt::PopupFocusReason);
    if (event->type() == QEvent::ShortcutOverride) { // an ordinary key, whoever waits for it below
        event->accept();
        return true;
    }
    const int key = static_cast<QKeyEvent *>(event)->key();
    if (key != Qt::Key_Tab && key != Qt::Key_Backtab)
        return false;
    moveFocus(key == Qt::Key_Tab);
    return true;
}

void Modal::moveFocus(bool forward)
{
    QQuickItem *item = window()->activeFocusItem();
    for (int steps = 0; item && steps < mostSteps; ++steps) {
        item = item->nextItemInFocusChain(forward);
        if (item && isAncestorOf(item) && !covers(item)) {
            item->forceActiveFocus(forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return;
        }
    }
}

bool Modal::childMouseEventFilter(QQuickItem *, QEvent *)
{
    return m_busy || !m_shown;
}

void Modal::keyPressEvent(QKeyEvent *event)
{
    event->accept(); // none of them is for what lies below
    if ((event->key() == Qt::Key_Escape || event->key() == Qt::Key_Back) && !event->isAutoRepeat())
        dismiss();
}

void Modal::keyReleaseEvent(QKeyEvent *event)
{
    event->accept();
}

void Modal::mousePressEvent(QMouseEvent *event)
{
    event->accept();
    press(event->position());
}

void Modal::mouseReleaseEvent(QMouseEvent *event)
{
    event->accept();
    release(event->position());
}

void Modal::touchEvent(QTouchEvent *event)
{
    event->accept();
    if (event->type() == QEvent::TouchBegin)
        press(event->point(0).position());
    else if (event->type() == QEvent::TouchEnd)
        release(event->point(0).position());
    else if (event->type() == QEvent::TouchCancel)
        m_pressedBeside = false;
}

void Modal::press(const QPointF &position)
{
    m_pressedBeside = !m_busy && !isOnPanel(position);
}

void Modal::release(const QPointF &position)
{
    if (std::exchange(m_pressedBeside, false) && m_tapBesideDismisses && !isOnPanel(position))
        dismiss();
}

void Modal::wheelEvent(QWheelEvent *event)
{
    event->accept();
}

bool Modal::isOnPanel(const QPointF &position) const
{
    return m_panel && m_panel->contains(mapToItem(m_panel, position));
}

} // namespace clockwell
