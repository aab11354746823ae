#include "EditMenuKeys.h"
#include "OpenEditMenu.h"

#include <QKeyEvent>
#include <QPointerEvent>

#include <algorithm>

// What the window hears while the menu of a field is open.

namespace clockwell {

bool OpenEditMenu::eventFilter(QObject *, QEvent *event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::ShortcutOverride:
        return hears(static_cast<QKeyEvent *>(event));
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
        if (!isBeside(static_cast<QPointerEvent *>(event)))
            return event->isSinglePointEvent() && static_cast<QSinglePointEvent *>(event)->button() !=
                                                      Qt::LeftButton; // not for what lies below
        close();
        return false;
    case QEvent::Wheel:
    case QEvent::NativeGesture:
        close();
        return false;
    default:
        return false;
    }
}

/// Whether a finger or button goes down beside it.
bool OpenEditMenu::isBeside(const QPointerEvent *event) const
{
    const auto &points = event->points();
    return std::any_of(points.begin(), points.end(), [this](const QEventPoint &point) {
        return point.state() == QEventPoint::Pressed &&
               !m_item->contains(m_item->mapFromScene(point.scenePosition()));
    });
}

bool OpenEditMenu::hears(QKeyEvent *event)
{
    const EditMenuKey key = editMenuKey(*event, m_current >= 0);
    const bool pressed = event->type() == QEvent::KeyPress;
    if (key == EditMenuKey::Modifier)
        return false;
    if (key == EditMenuKey::Typing) {
        if (pressed)
            close();
        return false;
    }
    event->accept();
    if (!pressed)
        return true; // no shortcut, but a key for the menu
    const auto count = static_cast<int>(m_actions.size());
    if (key == EditMenuKey::Next)
        setCurrent((m_current + 1) % count);
    else if (key == EditMenuKey::Previous)
        setCurrent(m_current <= 0 ? count - 1 : m_current - 1);
    else if (event->isAutoRepeat())
        return true;
    else if (key == EditMenuKey::Choose)
        choose(m_current);
    else
        close();
    return true;
}

} // namespace clockwell
