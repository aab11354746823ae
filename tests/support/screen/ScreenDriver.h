#pragma once

#include <QAccessible>
#include <QObject>
#include <QRect>
#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

class QQuickWindow;

namespace clockwell::test {

/// Operates a window like a user with or without a screen reader: finds controls in the accessibility tree by
/// their visible name and sends input events through the window system, so that hit testing, focus and
/// disabled states are tested, too.
///
///     ScreenDriver screen(window);
///     screen.type(u"Email"_s, u"ada@example.org"_s);
///     screen.click(u"Sign in"_s);
///     ASSERT_TRUE(screen.waitFor(u"Attendance"_s)) << screen.dump();
///
/// Main thread only. Every wait ends after its `limit`.
class ScreenDriver
{
public:
    /// It only ends a test that hangs.
    static constexpr std::chrono::milliseconds defaultLimit = std::chrono::seconds(40);

    explicit ScreenDriver(QQuickWindow *window);

    /// One element as exposed to screen readers.
    struct Element
    {
        QString name;
        QAccessible::Role role = QAccessible::NoRole;
        QAccessible::State state;
        QRect rect;                ///< in window coordinates, logical pixels
        QObject *object = nullptr; ///< not owned
    };

    /// The first visible element with this name (and this role, if given).
    std::optional<Element> find(const QString &name, QAccessible::Role role = QAccessible::NoRole) const;
    /// All visible elements, in tree order.
    QList<Element> elements() const;
    /// The names of the visible elements, in tree order.
    QStringList texts() const;
    bool shows(const QString &name) const { return find(name).has_value(); }
    bool isEnabled(const QString &name) const;

    /// Waits until an element with the name is visible (waitUntilGone: no longer visible). False after the
    /// limit.
    bool waitFor(const QString &name, std::chrono::milliseconds limit = defaultLimit) const;
    bool waitUntilGone(const QString &name, std::chrono::milliseconds limit = defaultLimit) const;
    /// Waits until a visible text begins with `prefix` and returns it; empty after the limit.
    QString waitForPrefix(const QString &prefix, std::chrono::milliseconds limit = defaultLimit) const;

    /// Waits until screens and dialogs have stopped moving, because they ignore taps while they move. False
    /// after the limit.
    bool waitUntilStill(std::chrono::milliseconds limit = defaultLimit) const;

    /// A left click in the centre of the element. False when it is not visible.
    bool click(const QString &name, QAccessible::Role role = QAccessible::NoRole);
    /// The press action of assistive technology. False when there is none.
    bool press(const QString &name, QAccessible::Role role = QAccessible::NoRole);
    /// Clicks the editable field of this name and types the text key by key.
    bool type(const QString &field, const QString &text);
    /// Replaces the content of the field.
    bool retype(const QString &field, const QString &text);
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    /// Types into the focused item.
    void typeText(const QString &text);

    /// Waits for animations to end, then saves a screenshot of the window. False when the file cannot be
    /// written.
    bool savePng(const QString &path) const;
    /// The tree as text, for the message of a failed assertion.
    QString dump() const;

private:
    QQuickWindow *m_window;
};

} // namespace clockwell::test
