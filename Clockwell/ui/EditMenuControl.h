#pragma once

#include <QBasicTimer>
#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QPointingDevice>
#include <QQmlParserStatus>
#include <QQuickItem>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

class QKeyEvent;
class QSinglePointEvent;

namespace clockwell {

class OpenEditMenu;

/// Declared inside a TextInput: opens its menu by a long press of finger or mouse, a right click, the Menu
/// key or Shift+F10, if there is anything to be done with the text. The menu is built each time that it opens
/// and destroyed when it has closed; until then this is all there is. A tap, a drag that selects and a drag
/// that scrolls stay what they are. A paste by the keyboard goes the same way as one by the menu. Main
/// thread.
class EditMenuControl : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    QML_ELEMENT
    /// What the menu stands beside; not owned.
    Q_PROPERTY(QQuickItem *field MEMBER m_field REQUIRED)
    /// The file of the menu's looks, relative to the one that this stands in.
    Q_PROPERTY(QUrl looks MEMBER m_looks REQUIRED)

public:
    explicit EditMenuControl(QObject *parent = nullptr) : QObject(parent) {}

    /// That of a TextInput; null where there is none.
    static EditMenuControl *of(const QObject *input);

    /// Gives the field the focus and opens the menu, unless the field is out of reach or nothing makes sense.
    /// By the keyboard or assistive technology, the first entry is reached at once.
    void open(bool byKeyboard);

    void classBegin() override {}
    void componentComplete() override;

protected:
    bool eventFilter(QObject *input, QEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    bool pressed(const QSinglePointEvent *event);
    bool moved(const QSinglePointEvent *event);
    bool released(const QSinglePointEvent *event);
    void grabbed(QObject *item, QPointingDevice::GrabTransition transition);
    bool key(QKeyEvent *event);
    void longPressed();
    bool isWithinReach() const;

    QPointer<QQuickItem> m_input;
    QPointer<QQuickItem> m_field;
    QPointer<OpenEditMenu> m_menu;
    QUrl m_looks;
    QBasicTimer m_holding;
    QPointF m_pressedAt;
    int m_selectionStart = 0; // before the press
    int m_selectionEnd = 0;
    bool m_held = false; // the press has become a long one
};

} // namespace clockwell
