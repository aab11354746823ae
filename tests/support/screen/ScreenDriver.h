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

/// Drives a window the way a person with or without a screen reader does: it finds controls in the
/// accessibility tree by their visible name and acts on them with input events that enter through the window
/// system, so that hit testing, focus and disabled states are the real ones.
///
///     ScreenDriver screen(window);
///     screen.type(u"Email"_s, u"ada@example.org"_s);
///     screen.click(u"Sign in"_s);
///     ASSERT_TRUE(screen.waitFor(u"Attendance"_s)) << screen.dump();
///
/// Main thread only. Every wait is bounded by its `limit`.
class ScreenDriver
{
public:
    static constexpr std::chrono::milliseconds defaultLimit{5000};

    explicit ScreenDriver(QQuickWindow *window);

    /// What a screen reader is told of one element.
    struct Element
    {
        QString name;
        QAccessible::Role role = QAccessible::NoRole;
        QAccessible::State state;
        QRect rect;                ///< in window coordinates, logical pixels
        QObject *object = nullptr; ///< not owned
    };

    /// The first element of this name that is showing now (of this role, if one is given).
    std::optional<Element> find(const QString &name, QAccessible::Role role = QAccessible::NoRole) const;
    /// Every showing element, in tree order.
    QList<Element> elements() const;
    /// The names of the showing elements, in tree order: what the screen says.
    QStringList texts() const;
    bool shows(const QString &name) const { return find(name).has_value(); }
    bool isEnabled(const QString &name) const;

    /// Waits until the name is showing (or, for waitUntilGone, no longer is). False when the limit passed.
    bool waitFor(const QString &name, std::chrono::milliseconds limit = defaultLimit) const;
    bool waitUntilGone(const QString &name, std::chrono::milliseconds limit = defaultLimit) const;
    /// Waits until some showing text begins with this; returns it, or an empty text when the limit passed.
    QString waitForPrefix(const QString &prefix, std::chrono::milliseconds limit = defaultLimit) const;

    /// Waits until screens and dialogs have come to rest: while they move, they take no taps. False when the
    /// limit passed.
    bool waitUntilStill(std::chrono::milliseconds limit = defaultLimit) const;

    /// A left click in the middle of the element. False when it is not showing.
    bool click(const QString &name, QAccessible::Role role = QAccessible::NoRole);
    /// The press action of assistive technology. False when there is none.
    bool press(const QString &name, QAccessible::Role role = QAccessible::NoRole);
    /// Clicks the editable field of this name and types the text key by key.
    bool type(const QString &field, const QString &text);
    /// Replaces what the field holds.
    bool retype(const QString &field, const QString &text);
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    /// Types into whatever has the focus.
    void typeText(const QString &text);

    /// Lets animations and polish settle, then grabs the window. False when the file cannot be written.
    bool savePng(const QString &path) const;
    /// The tree as text, for the message of a failed assertion.
    QString dump() const;

private:
    QQuickWindow *m_window;
};

} // namespace clockwell::test
