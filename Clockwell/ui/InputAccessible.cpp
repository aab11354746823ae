#include "EditMenuControl.h"
#include "IsMasked.h"
#include "ItemAccessible.h"

#include <QQuickItem>
#include <QWindow>

#include <algorithm>

namespace clockwell {

namespace {

void select(QQuickItem *input, int start, int end)
{
    QMetaObject::invokeMethod(input, "select", Q_ARG(int, start), Q_ARG(int, end));
}

} // namespace

bool InputAccessible::isMasked() const
{
    return clockwell::isMasked(item());
}

QString InputAccessible::shown() const
{
    return item()->property(isMasked() ? "displayText" : "text").toString();
}

QString InputAccessible::text(QAccessible::Text text) const
{
    return text == QAccessible::Value ? shown() : ItemAccessible::text(text);
}

void InputAccessible::setText(QAccessible::Text text, const QString &value)
{
    if (text == QAccessible::Value && item()->isEnabled())
        item()->setProperty("text", value);
}

QAccessible::State InputAccessible::state() const
{
    QAccessible::State state = ItemAccessible::state();
    state.editable = !item()->property("readOnly").toBool();
    state.readOnly = !state.editable;
    state.passwordEdit = isMasked();
    state.selectableText = true;
    return state;
}

void *InputAccessible::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::TextInterface ? static_cast<QAccessibleTextInterface *>(this)
                                              : ItemAccessible::interface_cast(type);
}

QStringList InputAccessible::actionNames() const
{
    QStringList names = ItemAccessible::actionNames();
    if (item()->isEnabled() && EditMenuControl::of(item()))
        names.append(showMenuAction());
    return names;
}

void InputAccessible::doAction(const QString &action)
{
    EditMenuControl *menu = action == showMenuAction() ? EditMenuControl::of(item()) : nullptr;
    if (menu)
        menu->open(true);
    else
        ItemAccessible::doAction(action);
}

QString InputAccessible::text(int start, int end) const
{
    return shown().mid(start, end - start);
}

int InputAccessible::characterCount() const
{
    return static_cast<int>(shown().size());
}

int InputAccessible::cursorPosition() const
{
    return item()->property("cursorPosition").toInt();
}

void InputAccessible::setCursorPosition(int position)
{
    item()->setProperty("cursorPosition", position);
}

int InputAccessible::selectionCount() const
{
    return item()->property("selectionStart") == item()->property("selectionEnd") ? 0 : 1;
}

void InputAccessible::selection(int index, int *start, int *end) const
{
    const bool known = index == 0 && selectionCount() == 1;
    *start = known ? item()->property("selectionStart").toInt() : 0;
    *end = known ? item()->property("selectionEnd").toInt() : 0;
}

void InputAccessible::addSelection(int start, int end)
{
    select(item(), start, end);
}

void InputAccessible::setSelection(int index, int start, int end)
{
    if (index == 0)
        select(item(), start, end);
}

void InputAccessible::removeSelection(int index)
{
    if (index == 0)
        QMetaObject::invokeMethod(item(), "deselect");
}

QRect InputAccessible::characterRect(int offset) const
{
    QRectF cursor;
    QMetaObject::invokeMethod(item(), "positionToRectangle", Q_RETURN_ARG(QRectF, cursor),
                              Q_ARG(int, offset));
    QRectF next;
    QMetaObject::invokeMethod(item(), "positionToRectangle", Q_RETURN_ARG(QRectF, next),
                              Q_ARG(int, offset + 1));
    cursor.setRight(std::max(cursor.right(), next.left()));
    const QRectF scene = item()->mapRectToScene(cursor);
    return window() ? QRect(window()->mapToGlobal(scene.topLeft().toPoint()), scene.size().toSize())
                    : QRect();
}

int InputAccessible::offsetAtPoint(const QPoint &point) const
{
    for (int offset = 0; offset < characterCount(); ++offset)
        if (characterRect(offset).contains(point))
            return offset;
    return -1;
}

void InputAccessible::scrollToSubstring(int start, int)
{
    setCursorPosition(start);
}

QString InputAccessible::attributes(int, int *start, int *end) const
{
    *start = 0;
    *end = characterCount();
    return {};
}

} // namespace clockwell
