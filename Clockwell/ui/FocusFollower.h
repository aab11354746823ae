#pragma once

#include <QObject>
#include <QPointer>
#include <QQmlParserStatus>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// Keeps the item with the keyboard focus visible in a Flickable: scrolls by the least amount when the focus
/// moves and when the view shrinks, as it does when an on-screen keyboard opens. Main thread only.
class FocusFollower : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    QML_ELEMENT
    /// A Flickable; not owned.
    Q_PROPERTY(QQuickItem *flickable MEMBER m_flickable REQUIRED)
    /// Free space to keep above and below the item, in logical pixels.
    Q_PROPERTY(qreal margin MEMBER m_margin)

public:
    explicit FocusFollower(QObject *parent = nullptr);

    void classBegin() override {}
    void componentComplete() override;

private:
    void followWindow();
    void reveal();

    QPointer<QQuickItem> m_flickable;
    qreal m_margin = 16;
    QMetaObject::Connection m_focus;
};

} // namespace clockwell
