#pragma once

#include <QAccessible>
#include <QAccessibleObject>

class QQuickItem;

namespace clockwell {

/// What assistive technology is told of a control. Role, name and the like are those of the item's attached
/// Accessible object; beyond what Qt 6.4 tells by itself this reports a disabled control as disabled. A leaf
/// of the tree.
class ItemAccessible : public QAccessibleObject, public QAccessibleActionInterface
{
public:
    explicit ItemAccessible(QQuickItem *item);

    QAccessible::Role role() const override;
    QString text(QAccessible::Text text) const override;
    QAccessible::State state() const override;
    QRect rect() const override;
    QWindow *window() const override;
    QAccessibleInterface *parent() const override;
    QAccessibleInterface *child(int index) const override;
    int childCount() const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    QStringList actionNames() const override;
    void doAction(const QString &action) override;
    QStringList keyBindingsForAction(const QString &action) const override;

protected:
    QQuickItem *item() const;

private:
    QVariant attached(const char *property) const;
};

/// The same for a text input. Qt 6.4 gives assistive technology the text of a password field as it is; this
/// gives it what is shown.
class InputAccessible : public ItemAccessible, public QAccessibleTextInterface
{
public:
    using ItemAccessible::ItemAccessible;
    using ItemAccessible::text;

    QString text(QAccessible::Text text) const override;
    void setText(QAccessible::Text text, const QString &value) override;
    QAccessible::State state() const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    /// The edit menu is among them, for those who cannot press for long.
    QStringList actionNames() const override;
    void doAction(const QString &action) override;

    QString text(int start, int end) const override;
    int characterCount() const override;
    int cursorPosition() const override;
    void setCursorPosition(int position) override;
    int selectionCount() const override;
    void selection(int index, int *start, int *end) const override;
    void addSelection(int start, int end) override;
    void setSelection(int index, int start, int end) override;
    void removeSelection(int index) override;
    QRect characterRect(int offset) const override;
    int offsetAtPoint(const QPoint &point) const override;
    void scrollToSubstring(int start, int end) override;
    QString attributes(int offset, int *start, int *end) const override;

private:
    bool isMasked() const;
    QString shown() const;
};

/// Makes these the interfaces of every Pressable and every TextInput of the process. Called by the
/// components' constructors; the second call does nothing.
void installItemAccessibles();

/// Tells assistive technology that the item has been enabled or disabled.
void announceEnabled(QQuickItem *item);

} // namespace clockwell
