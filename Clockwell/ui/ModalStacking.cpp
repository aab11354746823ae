#include "Modal.h"
#include "ScreenStack.h"

#include <algorithm>

// Which modals and screens stand around a modal, and what lies below it.

namespace clockwell {

QList<Modal *> &Modal::openModals()
{
    static QList<Modal *> modals;
    return modals;
}

template <class Visit>
void Modal::goOutwards(Visit visit) const
{
    const QQuickItem *child = nullptr;
    const QQuickItem *around = m_home ? m_home.data() : parentItem();
    while (around && visit(around, child)) {
        const auto *modal = qobject_cast<const Modal *>(around);
        child = modal ? nullptr : around;
        around = modal && modal->m_home ? modal->m_home.data() : around->parentItem();
    }
}

/// No screen on the way to it is covered by another, or just being replaced.
bool Modal::isInFront() const
{
    bool inFront = true;
    goOutwards([&](const QQuickItem *around, const QQuickItem *child) {
        const auto *stack = qobject_cast<const ScreenStack *>(around);
        inFront = !stack || !child || stack->currentItem() == child;
        return inFront;
    });
    return inFront;
}

/// Its screen, or a modal that it is part of, is on its way out.
bool Modal::isLeaving() const
{
    bool leaving = false;
    goOutwards([&](const QQuickItem *around, const QQuickItem *child) {
        const auto *stack = qobject_cast<const ScreenStack *>(around);
        const auto *modal = qobject_cast<const Modal *>(around);
        leaving = (stack && child && !stack->holds(child)) || (modal && !modal->m_shown);
        return !leaving;
    });
    return leaving;
}

Modal *Modal::topmostOf(const QQuickWindow *window)
{
    const QList<Modal *> &modals = openModals();
    const auto found = std::find_if(modals.crbegin(), modals.crend(), [window](const Modal *modal) {
        return modal->window() == window && modal->isInFront();
    });
    return found == modals.crend() ? nullptr : *found;
}

bool Modal::covers(const QQuickItem *item)
{
    for (const QQuickItem *around = item; around; around = around->parentItem()) {
        const auto *modal = qobject_cast<const Modal *>(around);
        if (modal && !modal->m_open) // on its way out
            return true;
    }
    const Modal *topmost = openModals().isEmpty() ? nullptr : topmostOf(item->window());
    return topmost && topmost != item && !topmost->isAncestorOf(item);
}

} // namespace clockwell
