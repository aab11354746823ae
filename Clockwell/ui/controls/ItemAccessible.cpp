#include "ItemAccessible.h"

#include "ui/dialogs/DialogScope.h"

#include <private/qquickaccessibleattached_p.h>

namespace clockwell {

namespace {

void announceEnabled(QQuickItem *item)
{
    QAccessible::State changed;
    changed.disabled = true;
    QAccessibleStateChangeEvent event(item, changed);
    QAccessible::updateAccessibility(&event);
}

QAccessibleInterface *createInterface(const QString &className, QObject *object)
{
    if (className != u"QQuickAbstractButton" && className != u"QQuickText")
        return nullptr;
    auto *item = static_cast<QQuickItem *>(object);
    if (className == u"QQuickAbstractButton")
        QObject::connect(item, &QQuickItem::enabledChanged, item, [item] { announceEnabled(item); });
    return new ItemAccessible(item);
}

} // namespace

void installItemAccessibles()
{
    [[maybe_unused]] static const bool installed = (QAccessible::installFactory(createInterface), true);
}

QAccessible::Role ItemAccessible::role() const
{
    const auto *declared = QQuickAccessibleAttached::attachedProperties(item());
    return declared && declared->role() != QAccessible::NoRole ? declared->role()
                                                               : QAccessibleQuickItem::role();
}

QAccessible::State ItemAccessible::state() const
{
    QAccessible::State state = QAccessibleQuickItem::state();
    state.disabled = !item()->isEnabled();
    state.focusable = state.focusable && item()->isEnabled();
    state.invisible = state.invisible || DialogScope::covers(item());
    return state;
}

void ItemAccessible::doAction(const QString &action)
{
    if (item()->isEnabled() && item()->isVisible())
        QAccessibleQuickItem::doAction(action);
}

} // namespace clockwell
