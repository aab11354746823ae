#pragma once

#include <QtGlobal>

class QQuickItem;

namespace clockwell {

/// Scrolls the Flickable vertically by the least amount that brings all of `item`, which is part of its
/// content, into view, with `margin` points above and below where there is room; what is higher than the view
/// shows its lower end. Does nothing for an item that is elsewhere. Main thread.
void scrollIntoView(QQuickItem *flickable, const QQuickItem *item, qreal margin);

} // namespace clockwell
