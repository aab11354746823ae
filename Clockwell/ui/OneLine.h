#pragma once

#include <QObject>
#include <QPointer>
#include <QQuickItem>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// Keeps the text of a TextInput on one line, wherever it comes from: what is copied from elsewhere often
/// ends in a line break, which the input would hold and send without showing it. Main thread only.
class OneLine : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    /// A TextInput; not owned. Set once.
    Q_PROPERTY(QQuickItem *input READ input WRITE setInput NOTIFY inputChanged)

public:
    explicit OneLine(QObject *parent = nullptr) : QObject(parent) {}

    QQuickItem *input() const { return m_input; }
    void setInput(QQuickItem *input);

    struct Joined
    {
        QString text;
        int cursor = 0;
    };
    /// Line breaks within the text become spaces, those at its ends go. `cursor` is a position in the text.
    static Joined join(const QString &text, int cursor);

Q_SIGNALS:
    void inputChanged();
    /// The input's text has changed and is on one line.
    void textChanged();

private:
    Q_SLOT void follow();

    QPointer<QQuickItem> m_input;
    bool m_joining = false;
};

} // namespace clockwell
