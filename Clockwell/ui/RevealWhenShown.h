#pragma once

#include <QPointer>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// Scrolls the innermost Flickable around `item` so that a message is seen that appears outside of the view:
/// once for each new `text`, when the layout has made room for it. The focus stays where it is. Main thread.
class RevealWhenShown : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    /// What shows the text; not owned, set once.
    Q_PROPERTY(QQuickItem *item MEMBER m_item WRITE setItem REQUIRED)
    /// Empty while there is no message.
    Q_PROPERTY(QString text MEMBER m_text WRITE setText REQUIRED)

public:
    explicit RevealWhenShown(QObject *parent = nullptr) : QObject(parent) {}

    void setItem(QQuickItem *item);
    void setText(const QString &text);

private:
    void follow();
    void reveal();

    QPointer<QQuickItem> m_item;
    QString m_text;
    bool m_new = false; // the text has not been revealed yet
    QMetaObject::Connection m_frame;
};

} // namespace clockwell
