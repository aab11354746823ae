#pragma once

#include <QPointer>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// Scrolls the innermost Flickable around `item` so that a message is seen that appears outside of the view.
/// The focus stays where it is. Once for each time that the item is shown, when the layout has made room for
/// it. Main thread.
class RevealWhenShown : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    /// Not owned; set once.
    Q_PROPERTY(QQuickItem *item MEMBER m_item WRITE setItem REQUIRED)

public:
    explicit RevealWhenShown(QObject *parent = nullptr) : QObject(parent) {}

    void setItem(QQuickItem *item);

private:
    void follow();
    void reveal();

    QPointer<QQuickItem> m_item;
    QMetaObject::Connection m_frame;
};

} // namespace clockwell
