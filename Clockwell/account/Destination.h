#pragma once

#include "ui/ScreenStack.h"

#include <QPointer>
#include <QQuickItem>
#include <QUrl>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// The screen that another one leads to, by a flag of that one's model: pushed when the flag turns true. When
/// the screen that leads there is the topmost again, `left` asks for the flag to be taken back. A screen that
/// is no longer the topmost (it is just being left) pushes nothing. Main thread.
class Destination : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(clockwell::ScreenStack *stack MEMBER m_stack WRITE setStack REQUIRED)
    /// The screen that leads there.
    Q_PROPERTY(QQuickItem *from MEMBER m_from REQUIRED)
    Q_PROPERTY(QUrl file MEMBER m_file REQUIRED)
    Q_PROPERTY(QVariantMap properties MEMBER m_properties REQUIRED)
    Q_PROPERTY(bool shown MEMBER m_shown WRITE setShown REQUIRED)

public:
    explicit Destination(QObject *parent = nullptr);

    void setStack(ScreenStack *stack);
    void setShown(bool shown);

Q_SIGNALS:
    void left();

private:
    bool isOnTop() const;
    void followStack();

    QPointer<ScreenStack> m_stack;
    QPointer<QQuickItem> m_from;
    QUrl m_file;
    QVariantMap m_properties;
    bool m_shown = false;
};

} // namespace clockwell
