#include "ModalAccessible.h"

#include "Modal.h"

#include <QQuickWindow>

namespace clockwell {

namespace {

QAccessibleInterface *createModalInterface(const QString &className, QObject *object)
{
    if (className != u"clockwell::Modal")
        return nullptr;
    return new ModalAccessible(static_cast<Modal *>(object));
}

/// What has a role of its own; the class of the attached object is private to Qt, its properties are not.
bool isOffered(const QQuickItem *item)
{
    for (const QObject *child : item->children())
        if (child->inherits("QQuickAccessibleAttached"))
            return !child->property("ignored").toBool();
    return false;
}

/// The nearest descendants with a role, in the order in which they are drawn.
void collect(const QQuickItem *item, QList<QQuickItem *> &offered)
{
    for (QQuickItem *child : item->childItems())
        if (isOffered(child))
            offered.append(child);
        else
            collect(child, offered);
}

QList<QQuickItem *> offeredChildren(QObject *modal)
{
    QList<QQuickItem *> offered;
    collect(static_cast<QQuickItem *>(modal), offered);
    return offered;
}

} // namespace

ModalAccessible::ModalAccessible(Modal *modal) : ItemAccessible(modal) {}

QAccessible::State ModalAccessible::state() const
{
    QAccessible::State state = ItemAccessible::state();
    state.modal = true;
    return state;
}

QAccessibleInterface *ModalAccessible::child(int index) const
{
    return QAccessible::queryAccessibleInterface(offeredChildren(object()).value(index));
}

int ModalAccessible::childCount() const
{
    return static_cast<int>(offeredChildren(object()).size());
}

int ModalAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    return static_cast<int>(offeredChildren(object()).indexOf(child->object()));
}

QAccessibleInterface *ModalAccessible::childAt(int x, int y) const
{
    for (int index = childCount() - 1; index >= 0; --index) {
        QAccessibleInterface *interface = child(index);
        if (interface && !interface->state().invisible && interface->rect().contains(x, y)) {
            QAccessibleInterface *inner = interface->childAt(x, y);
            return inner ? inner : interface;
        }
    }
    return nullptr;
}

QAccessibleInterface *ModalAccessible::focusChild() const
{
    auto *focused = window() ? static_cast<QQuickWindow *>(window())->activeFocusItem() : nullptr;
    return focused && item()->isAncestorOf(focused) ? QAccessible::queryAccessibleInterface(focused)
                                                    : nullptr;
}

void installModalAccessible()
{
    [[maybe_unused]] static const bool installed = (QAccessible::installFactory(createModalInterface), true);
}

void announceModal(Modal *modal, bool open)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent dialog(modal, open ? QAccessible::DialogStart : QAccessible::DialogEnd);
    QAccessible::updateAccessibility(&dialog);
    QAccessibleEvent shown(modal, open ? QAccessible::ObjectShow : QAccessible::ObjectHide);
    QAccessible::updateAccessibility(&shown);
}

} // namespace clockwell
