#include "EditMenuKeys.h"

#include <QKeyEvent>

namespace clockwell {

bool isMenuKey(const QKeyEvent &event)
{
    return event.key() == Qt::Key_Menu ||
           (event.key() == Qt::Key_F10 && event.modifiers() == Qt::ShiftModifier);
}

EditMenuKey editMenuKey(const QKeyEvent &event, bool reached)
{
    if (isMenuKey(event))
        return EditMenuKey::Leave;
    const bool plain = (event.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    switch (event.key()) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Meta:
        return EditMenuKey::Modifier;
    case Qt::Key_Escape:
    case Qt::Key_Back:
        return EditMenuKey::Leave;
    case Qt::Key_Backtab:
        return EditMenuKey::Previous;
    case Qt::Key_Tab:
    case Qt::Key_Right:
    case Qt::Key_Down:
        return plain ? EditMenuKey::Next : EditMenuKey::Typing;
    case Qt::Key_Left:
    case Qt::Key_Up:
        return plain ? EditMenuKey::Previous : EditMenuKey::Typing;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Select:
    case Qt::Key_Space:
        return plain && reached ? EditMenuKey::Choose : EditMenuKey::Typing;
    default:
        return EditMenuKey::Typing;
    }
}

} // namespace clockwell
