#include "EditMenuControl.h"

#include "EditActions.h"
#include "EditMenuKeys.h"
#include "FieldText.h"
#include "Modal.h"
#include "OpenEditMenu.h"
#include "SelectAt.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPointerEvent>
#include <QPointingDevice>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QStyleHints>
#include <QTimerEvent>

#include <utility>

namespace clockwell {

namespace {

bool isFinger(const QPointerEvent &event)
{
    return event.deviceType() != QInputDevice::DeviceType::Mouse &&
           event.deviceType() != QInputDevice::DeviceType::TouchPad;
}

} // namespace

EditMenuControl *EditMenuControl::of(const QObject *input)
{
    return input->findChild<EditMenuControl *>(QString(), Qt::FindDirectChildrenOnly);
}

void EditMenuControl::componentComplete()
{
    m_input = qobject_cast<QQuickItem *>(parent());
    if (!m_input)
        return;
    m_input->setAcceptedMouseButtons(m_input->acceptedMouseButtons() | Qt::RightButton);
    m_input->installEventFilter(this);
}

bool EditMenuControl::isWithinReach() const
{
    return m_input && m_field && m_input->window() && m_input->isVisible() && m_input->isEnabled() &&
           !Modal::covers(m_input);
}

void EditMenuControl::open(bool byKeyboard)
{
    if (m_menu)
        m_menu->close();
    if (!isWithinReach())
        return;
    FieldText::commit(m_input); // what can be done depends on it, and a change of the text closes the menu
    const auto actions = editActions(m_input);
    if (actions.isEmpty())
        return;
    m_input->forceActiveFocus(Qt::PopupFocusReason);
    auto *menu = new OpenEditMenu(m_input, m_field, actions, this);
    connect(menu, &OpenEditMenu::closed, menu, &QObject::deleteLater);
    if (byKeyboard)
        menu->setCurrent(0);
    if (!menu->show(qmlContext(this)->resolvedUrl(m_looks)))
        return delete menu;
    m_menu = menu;
}

bool EditMenuControl::eventFilter(QObject *, QEvent *event)
{
    switch (event->type()) { // a finger's come as another class than QMouseEvent
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        return pressed(static_cast<QSinglePointEvent *>(event));
    case QEvent::MouseMove:
        return moved(static_cast<QSinglePointEvent *>(event));
    case QEvent::MouseButtonRelease:
        return released(static_cast<QSinglePointEvent *>(event));
    case QEvent::KeyPress:
        return key(static_cast<QKeyEvent *>(event));
    default:
        return false;
    }
}

bool EditMenuControl::pressed(const QSinglePointEvent *event)
{
    m_held = false;
    m_holding.stop();
    if (event->button() == Qt::LeftButton) {
        m_pressedAt = event->position();
        m_selectionStart = m_input->property("selectionStart").toInt();
        m_selectionEnd = m_input->property("selectionEnd").toInt();
        m_holding.start(QGuiApplication::styleHints()->mousePressAndHoldInterval(), this);
        connect(event->pointingDevice(), &QPointingDevice::grabChanged, this, &EditMenuControl::grabbed,
                Qt::UniqueConnection);
        return false;
    }
    if (event->button() != Qt::RightButton)
        return false; // the middle one pastes on some desktops
    const int position = cursorPositionAt(m_input, event->position().x());
    if (!isSelectedAt(m_input, position))
        m_input->setProperty("cursorPosition", position);
    open(false);
    return true;
}

bool EditMenuControl::moved(const QSinglePointEvent *event)
{
    const QPointF way = event->position() - m_pressedAt;
    if (way.manhattanLength() >= QGuiApplication::styleHints()->startDragDistance())
        m_holding.stop();
    return m_held; // it moves what is selected no more
}

bool EditMenuControl::released(const QSinglePointEvent *event)
{
    m_holding.stop();
    if (event->button() == Qt::RightButton)
        return true;
    if (event->button() != Qt::LeftButton || !std::exchange(m_held, false))
        return false;
    m_input->setKeepMouseGrab(false);
    return isFinger(*event); // the input would take it for a tap, and put the cursor there
}

/// A press that is taken away, as by what scrolls, becomes no long one.
void EditMenuControl::grabbed(QObject *item, QPointingDevice::GrabTransition transition)
{
    if (item == m_input && transition != QPointingDevice::GrabExclusive)
        m_holding.stop();
}

bool EditMenuControl::key(QKeyEvent *event)
{
    m_holding.stop();
    if (event->matches(QKeySequence::Paste)) {
        doEditAction(m_input, EditAction::Paste);
        return true;
    }
    if (event->isAutoRepeat() && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter))
        return true; // it was held too long on the menu, and is not meant to send the form
    if (!isMenuKey(*event))
        return false;
    if (!event->isAutoRepeat())
        open(true);
    return true;
}

void EditMenuControl::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_holding.timerId())
        return QObject::timerEvent(event);
    m_holding.stop();
    if (isWithinReach())
        longPressed();
}

void EditMenuControl::longPressed()
{
    m_held = true;
    m_input->setKeepMouseGrab(true); // until it is let go
    m_input->forceActiveFocus(Qt::MouseFocusReason);
    const int position = cursorPositionAt(m_input, m_pressedAt.x());
    const bool wasSelected =
        m_selectionStart < m_selectionEnd && m_selectionStart <= position && position <= m_selectionEnd;
    if (wasSelected)
        QMetaObject::invokeMethod(m_input, "select", Q_ARG(int, m_selectionStart),
                                  Q_ARG(int, m_selectionEnd));
    else
        selectAt(m_input, m_pressedAt.x());
    open(false);
}

} // namespace clockwell
