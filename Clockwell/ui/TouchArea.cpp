#include "TouchArea.h"

#include "Modal.h"
#include "Pressable.h"

#include <QPointF>
#include <QQuickItem>

#include <algorithm>

namespace clockwell {

namespace {

bool isDrawnAt(const QQuickItem &item, const QPointF &point)
{
    if (qobject_cast<const Pressable *>(&item))
        return item.boundingRect().contains(point);
    const bool isField = item.flags().testFlag(QQuickItem::ItemAcceptsInputMethod);
    return isField && item.contains(point); // with its frame
}

bool anyDrawnAt(const QQuickItem &root, const QQuickItem &except, const QPointF &scenePoint)
{
    if (&root == &except || !root.isVisible())
        return false;
    const QPointF point = root.mapFromScene(scenePoint);
    if (isDrawnAt(root, point))
        return true;
    if (root.clip() && !root.contains(point))
        return false;
    const auto children = root.childItems();
    return std::any_of(children.begin(), children.end(),
                       [&](const QQuickItem *child) { return anyDrawnAt(*child, except, scenePoint); });
}

} // namespace

bool isAnotherDrawnAt(const QQuickItem &control, const QPointF &scenePoint)
{
    const QQuickItem *root = &control;
    while (root->parentItem() && !qobject_cast<const Modal *>(root))
        root = root->parentItem();
    return anyDrawnAt(*root, control, scenePoint);
}

} // namespace clockwell
