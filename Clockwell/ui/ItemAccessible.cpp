#include "ItemAccessible.h"

#include "Modal.h"
#include "Pressable.h"

#include <QQuickWindow>

namespace clockwell {

namespace {

QAccessibleInterface *createInterface(const QString &className, QObject *object)
{
    if (className == u"clockwell::Pressable" || className == u"QQuickText")
        return new ItemAccessible(static_cast<QQuickItem *>(object));
    if (className == u"QQuickTextInput")
        return new InputAccessible(static_cast<QQuickItem *>(object));
    return nullptr;
}

} // namespace

void installItemAccessibles()
{
    [[maybe_unused]] static const bool installed = (QAccessible::installFactory(createInterface), true);
}

void announceEnabled(QQuickItem *item)
{
    if (QAccessible::isActive()) {
        QAccessible::State changed;
        changed.disabled = true;
        QAccessibleStateChangeEvent event(item, changed);
        QAccessible::updateAccessibility(&event);
    }
}

ItemAccessible::ItemAccessible(QQuickItem *item) : QAccessibleObject(item) {}

QQuickItem *ItemAccessible::item() const
{
    return static_cast<QQuickItem *>(object());
}

// The attached object's class is private to Qt; its properties are not.
QVariant ItemAccessible::attached(const char *property) const
{
    for (const QObject *child : object()->children())
        if (child->inherits("QQuickAccessibleAttached"))
            return child->property(property);
    return {};
}

QAccessible::Role ItemAccessible::role() const
{
    return static_cast<QAccessible::Role>(attached("role").toInt());
}

QString ItemAccessible::text(QAccessible::Text text) const
{
    switch (text) {
    case QAccessible::Name:
        return attached("name").toString();
    case QAccessible::Description:
        return attached("description").toString();
    default:
        return {};
    }
}

QAccessible::State ItemAccessible::state() const
{
    QAccessible::State state;
    const QRect view = window() ? window()->geometry() : QRect();
    state.invisible = !item()->isVisible() || !item()->window() || !item()->window()->isVisible() ||
                      item()->size().isEmpty() || qFuzzyIsNull(item()->opacity()) || Modal::covers(item());
    state.offscreen = !view.intersects(rect());
    state.disabled = !item()->isEnabled();
    state.focusable = item()->isEnabled() && item()->activeFocusOnTab() && !state.invisible;
    state.focused = item()->hasActiveFocus() || attached("focused").toBool();
    state.selectable = attached("selectable").toBool();
    state.selected = attached("selected").toBool();
    return state;
}

QRect ItemAccessible::rect() const
{
    const QRectF scene = item()->mapRectToScene(QRectF(QPointF(), item()->size()));
    return window() ? QRect(window()->mapToGlobal(scene.topLeft().toPoint()), scene.size().toSize())
                    : QRect();
}

QWindow *ItemAccessible::window() const
{
    return item()->window();
}

QAccessibleInterface *ItemAccessible::parent() const
{
    for (QQuickItem *ancestor = item()->parentItem(); ancestor; ancestor = ancestor->parentItem())
        if (QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(ancestor))
            return interface;
    return QAccessible::queryAccessibleInterface(item()->window());
}

QAccessibleInterface *ItemAccessible::child(int) const
{
    return nullptr;
}

int ItemAccessible::childCount() const
{
    return 0;
}

int ItemAccessible::indexOfChild(const QAccessibleInterface *) const
{
    return -1;
}

void *ItemAccessible::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this) : nullptr;
}

QStringList ItemAccessible::actionNames() const
{
    QStringList names;
    if (qobject_cast<Pressable *>(object()))
        names.append(pressAction());
    if (state().focusable)
        names.append(setFocusAction());
    return names;
}

void ItemAccessible::doAction(const QString &action)
{
    auto *pressable = qobject_cast<Pressable *>(object());
    if (action == pressAction() && pressable)
        pressable->press();
    else if (action == setFocusAction() && item()->isEnabled())
        item()->forceActiveFocus();
}

QStringList ItemAccessible::keyBindingsForAction(const QString &) const
{
    return {};
}

} // namespace clockwell
