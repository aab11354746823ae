#pragma once

#include <QQuickItem>

namespace clockwell::test {

/// The item of this class that the control is, or the first one inside it; null when there is none.
inline QQuickItem *itemIn(QObject *control, const char *className)
{
    auto items = control->findChildren<QQuickItem *>();
    items.prepend(qobject_cast<QQuickItem *>(control));
    for (QQuickItem *item : items)
        if (item && item->inherits(className))
            return item;
    return nullptr;
}

/// The first text that is drawn by a control; null when there is none.
inline QQuickItem *textIn(QObject *control)
{
    return itemIn(control, "QQuickText");
}

/// Where a text is typed in a field; null when there is none.
inline QQuickItem *inputIn(QObject *field)
{
    return itemIn(field, "QQuickTextInput");
}

} // namespace clockwell::test
