#pragma once

#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// The focus scope that fills a modal popup. Main thread.
class DialogScope : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT

public:
    explicit DialogScope(QQuickItem *parent = nullptr);

    /// Whether the item is out of reach: below an open modal popup, or in one that is closing. Qt 6.4 offers
    /// it to assistive technology all the same.
    static bool covers(const QQuickItem *item);

    /// Whatever is pressed or dragged in the window no longer is; Qt 6.4 lets it go on when a popup opens or
    /// closes.
    Q_INVOKABLE void cancelPresses();
};

} // namespace clockwell
