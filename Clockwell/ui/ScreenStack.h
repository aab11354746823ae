#pragma once

#include <QQuickItem>
#include <QUrl>
#include <QVariantAnimation>
#include <QtQml/qqmlregistration.h>

#include <functional>

namespace clockwell {

/// Screens on top of each other, of which only the topmost is shown. A pushed screen slides in from the
/// trailing edge and is popped by its own `back` signal, if it has one. Screens are named by file, so that
/// one costs nothing before it is shown. While screens change places, pointers are not taken. Main thread.
///
/// Qt's own stack would do, but it comes with all of Qt's control templates, and registering those is a tenth
/// of the app's whole start.
class ScreenStack : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    /// The lowest screen, for a stack that begins with one.
    Q_PROPERTY(QQuickItem *initialItem MEMBER m_initialItem)
    /// The topmost screen; null while there is none.
    Q_PROPERTY(QQuickItem *currentItem READ currentItem NOTIFY currentItemChanged)
    Q_PROPERTY(int depth READ depth NOTIFY currentItemChanged)
    Q_PROPERTY(bool busy READ isBusy NOTIFY busyChanged)
    /// Of a change of screens, in milliseconds; 0 changes at once.
    Q_PROPERTY(int duration MEMBER m_duration)

public:
    explicit ScreenStack(QQuickItem *parent = nullptr);

    QQuickItem *currentItem() const { return m_screens.isEmpty() ? nullptr : m_screens.last(); }
    int depth() const { return static_cast<int>(m_screens.size()); }
    bool isBusy() const { return m_busy; }

    /// `properties` are set before the screen is complete, required ones among them. A file that cannot be
    /// loaded leaves the stack as it is, with a warning.
    Q_INVOKABLE void push(const QUrl &file, const QVariantMap &properties = {});
    /// Takes the topmost screen away, unless it is the only one.
    Q_SLOT void pop();
    /// Takes all screens away in favour of a new one; animated, the new one fades in.
    Q_INVOKABLE void replace(const QUrl &file, const QVariantMap &properties, bool animated);

Q_SIGNALS:
    void currentItemChanged();
    void busyChanged();

protected:
    void componentComplete() override;
    void geometryChange(const QRectF &now, const QRectF &before) override;
    bool childMouseEventFilter(QQuickItem *item, QEvent *event) override;

private:
    using Step = std::function<void(qreal)>;

    QQuickItem *load(const QUrl &file, const QVariantMap &properties);
    void add(QQuickItem *screen);
    void focusTop();
    /// Runs `step` from 0 to 1, then `end`; a change that still runs is brought to its end first.
    void change(int duration, Step step, std::function<void()> end);
    void finish();

    QQuickItem *m_initialItem = nullptr;
    QList<QQuickItem *> m_screens; // children, the topmost last
    QVariantAnimation m_animation;
    std::function<void()> m_end;
    int m_duration = 0;
    bool m_busy = false;
};

} // namespace clockwell
