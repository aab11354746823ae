#pragma once

#include "EditActions.h"

#include <QObject>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

#include <memory>

class QKeyEvent;
class QPointerEvent;

namespace clockwell {

/// The menu of a field from its opening to its closing, without its looks: it follows the field, hears the
/// keyboard, and knows when to go. The field keeps the focus all the time, so that the on-screen keyboard and
/// the selection stay. The item that is looked at stands above everything of the field's screen or, where the
/// field is inside a dialog or a sheet, of that. Main thread.
class OpenEditMenu : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Opened by EditMenuControl.")
    Q_PROPERTY(QStringList titles READ titles CONSTANT)
    /// What the keyboard has reached; -1 while it has reached nothing.
    Q_PROPERTY(int current READ current NOTIFY currentChanged)
    /// The most width there is for it, in points.
    Q_PROPERTY(qreal room READ room CONSTANT)

public:
    /// `input` is the TextInput, `field` what is drawn around it, `looks` the file of an item with a required
    /// property `menu`. The first two outlive it.
    OpenEditMenu(QQuickItem *input, QQuickItem *field, const QList<EditAction> &actions, QObject *parent);
    ~OpenEditMenu() override;

    /// Whether there is something to be looked at now.
    bool show(const QUrl &looks);
    /// Nothing of it remains to be seen or to be heard.
    Q_SLOT void close();

    QStringList titles() const;
    int current() const { return m_current; }
    void setCurrent(int current);
    qreal room() const;

    Q_INVOKABLE void choose(int index);

Q_SIGNALS:
    void currentChanged();
    /// Nothing of it is to be seen or heard any more; it may be deleted.
    void closed();

protected:
    bool eventFilter(QObject *window, QEvent *event) override;

private:
    void followField();
    void place();
    QRectF area() const;
    qreal middle() const;
    bool hears(QKeyEvent *event);
    bool isBeside(const QPointerEvent *event) const;
    void announce(bool open);

    QQuickItem *m_input;
    QQuickItem *m_field;
    QQuickItem *m_host;                 // what the item stands on
    std::unique_ptr<QQuickItem> m_item; // goes before this, to which it is bound
    QList<EditAction> m_actions;
    int m_current = -1;
    bool m_open = false;
};

} // namespace clockwell
