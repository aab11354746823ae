#include "PullToRefreshAccessible.h"

#include "PullToRefreshControl.h"

namespace clockwell {

namespace {

QAccessibleInterface *createPullToRefreshInterface(const QString &className, QObject *object)
{
    if (className != u"clockwell::PullToRefreshControl")
        return nullptr;
    return new PullToRefreshAccessible(static_cast<PullToRefreshControl *>(object));
}

} // namespace

PullToRefreshAccessible::PullToRefreshAccessible(PullToRefreshControl *control) : ItemAccessible(control) {}

PullToRefreshControl *PullToRefreshAccessible::control() const
{
    return static_cast<PullToRefreshControl *>(object());
}

QAccessible::State PullToRefreshAccessible::state() const
{
    QAccessible::State state = ItemAccessible::state();
    state.busy = control()->isRefreshing();
    return state;
}

QAccessible::Role PullToRefreshAccessible::role() const
{
    return control()->isRefreshing() ? QAccessible::AlertMessage : QAccessible::Button;
}

QStringList PullToRefreshAccessible::actionNames() const
{
    return {pressAction()};
}

void PullToRefreshAccessible::doAction(const QString &action)
{
    if (action == pressAction())
        control()->refresh();
}

void installPullToRefreshAccessible()
{
    [[maybe_unused]] static const bool installed =
        (QAccessible::installFactory(createPullToRefreshInterface), true);
}

void announceRefreshing(PullToRefreshControl *control)
{
    if (!QAccessible::isActive() || !control->isVisible())
        return;
    QAccessible::State changed;
    changed.busy = true;
    QAccessibleStateChangeEvent state(control, changed);
    QAccessible::updateAccessibility(&state);
    if (control->isRefreshing()) {
        QAccessibleEvent shown(control, QAccessible::ObjectShow);
        QAccessible::updateAccessibility(&shown);
    }
}

} // namespace clockwell
