#include "BuildItem.h"

#include <QQmlComponent>
#include <QQmlInfo>
#include <QQuickItem>

namespace clockwell {

QQuickItem *buildItem(QQmlComponent *component, QQuickItem *parent)
{
    auto *object = component ? component->beginCreate(component->creationContext()) : nullptr;
    auto *item = qobject_cast<QQuickItem *>(object);
    if (!item) {
        qmlWarning(parent) << (component ? component->errorString() : QStringLiteral("There is no content."));
        delete object;
        return nullptr;
    }
    item->setParent(parent);
    item->setParentItem(parent);
    item->setSize(parent->size());
    item->setFocus(true);
    component->completeCreate();
    return item;
}

} // namespace clockwell
