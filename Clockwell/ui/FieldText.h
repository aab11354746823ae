#pragma once

#include <QDeadlineTimer>
#include <QObject>
#include <QPointer>
#include <QQuickItem>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <optional>

class QInputMethodEvent;
class QQuickWindow;

namespace clockwell {

/// Declared inside a TextInput: its text as a form means it. It is on one line, and what an input method is
/// still composing belongs to it, because that is on the screen like the rest. What is composed becomes part
/// of the input's own text at the latest when something is done with it: `commit`, or when the field is left.
/// Where the text is masked, what is composed is masked as well, which Qt 6.4 does not do by itself.
/// Main thread.
class FieldText : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    /// A TextInput; not owned. Set once.
    Q_PROPERTY(QQuickItem *input READ input WRITE setInput NOTIFY inputChanged)
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(int cursorPosition READ cursorPosition WRITE setCursorPosition NOTIFY cursorPositionChanged)

public:
    explicit FieldText(QObject *parent = nullptr) : QObject(parent) {}

    /// Commits what is being composed in the window's focused field, if there is any.
    static void commitFocused(const QQuickWindow *window);
    /// Commits what is being composed in this TextInput, if there is any.
    static void commit(const QQuickItem *input);

    QQuickItem *input() const { return m_input; }
    void setInput(QQuickItem *input);

    QString text() const;
    /// While something is being composed, which would be lost, the last such text waits until it is done.
    void setText(const QString &text);
    /// In `text`; behind what is being composed, and left alone meanwhile.
    int cursorPosition() const;
    void setCursorPosition(int position);

    /// Asks the input method to commit what it is composing. What it leaves out, the field takes as it is
    /// shown.
    Q_INVOKABLE void commit();

    bool eventFilter(QObject *input, QEvent *event) override;

Q_SIGNALS:
    void inputChanged();
    /// Also when a text has been set that was there before.
    void textChanged();
    void cursorPositionChanged();

private:
    Q_SLOT void followText();
    Q_SLOT void followComposition();

    QString composed() const;
    bool isComposing() const { return !composed().isEmpty(); }
    void tell();
    void showWanted();
    void take(const QString &composed);
    bool hear(QInputMethodEvent *event);
    bool isLateCommit(const QInputMethodEvent *event);

    QPointer<QQuickItem> m_input;
    std::optional<QString> m_wanted; // set, but not shown yet
    QString m_inputText;             // when textChanged was last said
    bool m_joining = false;
    QString m_composed; // which a masked input does not show
    bool m_masking = false;
    QString m_taken; // from an input method that may still commit it
    QDeadlineTimer m_lateCommit;
};

} // namespace clockwell
