#pragma once

#include <QDeadlineTimer>
#include <QtQml/qqmlregistration.h>
#include <QtQuickTemplates2/private/qquicktextfield_p.h>

#include <optional>

namespace clockwell {

/// A TextField as a form means it. Its text stays on one line, and what an input method is still composing
/// belongs to it: that is on the screen like the rest, and becomes part of the field's own text at the latest
/// when something is done with it (`commit`) or the field is left. Where the text is masked, what is composed
/// is masked as well, and assistive technology is given the mask (Qt does that from 6.8 on). Main thread.
class FormTextField : public QQuickTextField
{
    Q_OBJECT
    QML_ELEMENT
    /// What assistive technology calls it.
    Q_PROPERTY(QString label MEMBER m_label READ label NOTIFY labelChanged)
    /// While something is being composed, which would be lost, the last text that is set waits until it is
    /// done.
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    /// In `text`; behind what is being composed, and left alone meanwhile.
    Q_PROPERTY(int cursorPosition READ cursorPosition WRITE setCursorPosition NOTIFY cursorPositionChanged)

public:
    explicit FormTextField(QQuickItem *parent = nullptr);

    QString label() const { return m_label; }
    QString text() const;
    void setText(const QString &text);
    int cursorPosition() const;
    void setCursorPosition(int position);

    /// Asks the input method to commit what it is composing; what it leaves out is taken as it is shown.
    Q_INVOKABLE void commit();
    /// Whether a person can get at it now.
    Q_INVOKABLE bool isWithinReach() const;
    /// Pastes the clipboard's text, on one line, as one edit.
    Q_INVOKABLE void pasteLine();

Q_SIGNALS:
    void labelChanged();
    /// By a key (Menu or Shift+F10) or by assistive technology.
    void menuRequested();

protected:
    void inputMethodEvent(QInputMethodEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void take(const QString &composed);
    bool isLateCommit(const QInputMethodEvent &event);

    QString m_label;
    std::optional<QString> m_wanted; // set, but not shown yet
    QString m_composed;              // which a masked field does not show
    QString m_taken;                 // from an input method that may still commit it
    QDeadlineTimer m_lateCommit;
};

} // namespace clockwell
