#include "DialogScope.h"

#include "ui/controls/Accessibles.h"

#include <QQuickWindow>
#include <QtQuickTemplates2/private/qquickoverlay_p.h>
#include <QtQuickTemplates2/private/qquickpopup_p.h>

namespace clockwell {

namespace {

const QQuickPopup *popupOf(const QQuickItem *popupItem)
{
    return qobject_cast<const QQuickPopup *>(popupItem->parent());
}

void takeTouchesFrom(QQuickItem *item)
{
    item->ungrabTouchPoints();
    const auto children = item->childItems();
    for (QQuickItem *child : children)
        takeTouchesFrom(child);
}

} // namespace

DialogScope::DialogScope(QQuickItem *parent) : QQuickItem(parent)
{
    installAccessibles();
    setFlag(ItemIsFocusScope);
}

bool DialogScope::covers(const QQuickItem *item)
{
    const auto *overlay =
        item->window() ? item->window()->contentItem()->findChild<QQuickOverlay *>() : nullptr;
    const auto layers = overlay ? overlay->childItems() : QList<QQuickItem *>();
    for (auto layer = layers.crbegin(); layer != layers.crend(); ++layer) {
        const QQuickPopup *popup = popupOf(*layer);
        const bool modal = popup && popup->isModal();
        const bool closing = !popup || (!popup->isOpened() && !(*layer)->hasFocus());
        if (*layer == item || (*layer)->isAncestorOf(item))
            return modal && closing;
        if (modal && !closing)
            return true;
    }
    return false;
}

void DialogScope::cancelPresses()
{
    if (!window())
        return;
    if (QQuickItem *grabber = window()->mouseGrabberItem())
        grabber->ungrabMouse();
    takeTouchesFrom(window()->contentItem());
}

} // namespace clockwell
