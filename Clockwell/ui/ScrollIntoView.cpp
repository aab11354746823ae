#include "ScrollIntoView.h"

#include <QQuickItem>

#include <algorithm>

namespace clockwell {

void scrollIntoView(QQuickItem *flickable, const QQuickItem *item, qreal margin)
{
    const auto *content = flickable->property("contentItem").value<QQuickItem *>();
    if (!content || !content->isAncestorOf(item))
        return;
    const auto rect = item->mapRectToItem(content, item->boundingRect());
    const qreal contentHeight = flickable->property("contentHeight").toReal();
    const qreal current = flickable->property("contentY").toReal();
    // Both edges in view where both fit; else the lower one, which is where the text is typed.
    const qreal lowest = std::min(rect.top() - margin, current);
    const qreal wanted = std::max(lowest, rect.bottom() + margin - flickable->height());
    const qreal y = std::clamp(wanted, 0.0, std::max(0.0, contentHeight - flickable->height()));
    if (!qFuzzyCompare(y + 1, current + 1))
        flickable->setProperty("contentY", y);
}

} // namespace clockwell
