#include "TouchArea.h"

#include "Accessibles.h"

#include <QQuickItem>

#include <algorithm>

namespace clockwell {

namespace {

constexpr qreal touchTarget = 44;

bool isAnotherDrawnAt(const QQuickItem &root, const QQuickItem &control, const QPointF &scenePoint)
{
    if (&root == &control || !root.isVisible())
        return false;
    const QPointF point = root.mapFromScene(scenePoint);
    if (root.clip() && !root.contains(point))
        return false;
    const bool isButton = qobject_cast<const TouchArea *>(root.containmentMask());
    const bool isField = root.flags().testFlag(QQuickItem::ItemAcceptsInputMethod); // with its frame
    if (!root.isAncestorOf(&control) &&
        (isButton ? root.boundingRect().contains(point) : isField && root.contains(point)))
        return true;
    const auto children = root.childItems();
    return std::any_of(children.begin(), children.end(), [&](const QQuickItem *child) {
        return isAnotherDrawnAt(*child, control, scenePoint);
    });
}

} // namespace

TouchArea::TouchArea(QObject *parent) : QObject(parent)
{
    installAccessibles();
}

bool TouchArea::contains(const QPointF &point) const
{
    const auto *control = qobject_cast<const QQuickItem *>(parent());
    if (!control)
        return false;
    const QRectF drawn = control->boundingRect();
    if (drawn.contains(point))
        return true;
    const qreal moreX = std::max(0.0, touchTarget - drawn.width()) / 2;
    const qreal moreY = std::max(0.0, touchTarget - drawn.height()) / 2;
    if (!drawn.adjusted(-moreX, -moreY, moreX, moreY).contains(point))
        return false;
    const QQuickItem *scope = control;
    while (scope->parentItem() && (scope == control || !scope->isFocusScope()))
        scope = scope->parentItem();
    return !isAnotherDrawnAt(*scope, *control, control->mapToScene(point));
}

} // namespace clockwell
