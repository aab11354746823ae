#pragma once

#include "ui/ScreenStack.h"

#include <QPointer>
#include <QQuickItem>
#include <QUrl>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// Pushes a screen onto the stack when `shown`, bound to a flag of the source screen's model, turns true.
/// When the source screen is on top again, `left` asks for the flag to be cleared. Pushes nothing if the
/// source screen is not on top (while it is being popped). Main thread only.
class Destination : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(clockwell::ScreenStack *stack MEMBER m_stack WRITE setStack REQUIRED)
    /// The source screen, from which the other one is opened.
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
