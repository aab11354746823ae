#pragma once

#include <QBasicTimer>
#include <QPointer>
#include <QQuickItem>
#include <QVariantAnimation>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// What alerts, dialogs and sheets have in common, without their looks. Declared inside the screen that it
/// belongs to; while it is open it fills the outermost screen that contains it, tab bar and all, above
/// whatever was opened before: its visual parent changes, so that bindings on it name ids, not `parent`. It
/// goes away with that screen, in the middle of an animation too, and does not open on one that is on its way
/// out.
///
/// While it is open and the topmost one of the screen in front, what lies below gets no pointer, no key and
/// no shortcut, and its controls and labels are not offered to assistive technology; the focus goes in,
/// cannot be tabbed out, and returns to where it was. Escape and the platform's Back key ask it to go. It
/// never changes `shown` itself. Main thread only.
class Modal : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool shown READ isShown WRITE setShown NOTIFY shownChanged)
    /// Of opening and closing, in milliseconds; 0 changes at once.
    Q_PROPERTY(int duration MEMBER m_duration NOTIFY durationChanged)
    /// 0 closed to 1 open, anything between while it moves.
    Q_PROPERTY(qreal openness READ openness NOTIFY opennessChanged)
    /// It moves, or has opened so shortly ago that a tap may have been meant for what lies below: pointers
    /// are not taken.
    Q_PROPERTY(bool busy READ isBusy NOTIFY busyChanged)
    /// What stands on the dimmed ground; not owned.
    Q_PROPERTY(QQuickItem *panel READ panel WRITE setPanel NOTIFY panelChanged)
    /// A tap beside the panel asks to go.
    Q_PROPERTY(bool tapBesideDismisses MEMBER m_tapBesideDismisses NOTIFY tapBesideDismissesChanged)
    /// What has the focus at first, every time; without it the item itself. Not owned.
    Q_PROPERTY(QQuickItem *firstFocus MEMBER m_firstFocus NOTIFY firstFocusChanged)

public:
    /// A second tap that comes sooner after the opening belongs to the first, in milliseconds.
    static constexpr int settling = 250;

    explicit Modal(QQuickItem *parent = nullptr);
    ~Modal() override;

    bool isShown() const { return m_shown; }
    void setShown(bool shown);
    qreal openness() const { return m_openness; }
    bool isBusy() const { return m_busy; }
    QQuickItem *panel() const { return m_panel; }
    void setPanel(QQuickItem *panel);

    /// Emit the signals, unless it is not shown (any more).
    Q_INVOKABLE void accept();
    Q_INVOKABLE void dismiss();

    /// Whether the item is out of reach: below an open modal, or part of one that is closing.
    static bool covers(const QQuickItem *item);

Q_SIGNALS:
    void accepted();
    /// It has been asked to go without being accepted: the owner of `shown` decides.
    void dismissed();
    void shownChanged();
    void durationChanged();
    void opennessChanged();
    void busyChanged();
    void panelChanged();
    void tapBesideDismissesChanged();
    void firstFocusChanged();

protected:
    /// Before it opens and after it has closed: for what exists only in between.
    virtual void aboutToOpen() {}
    virtual void hasClosed() {}
    /// Moves there from where it is.
    void moveTo(qreal openness);
    void stopMoving() { m_motion.stop(); }
    void setOpenness(qreal openness);
    bool isOnPanel(const QPointF &position) const;
    /// One finger or button on the ground, at a position of this item.
    void press(const QPointF &position);
    void release(const QPointF &position);

    void componentComplete() override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;
    bool eventFilter(QObject *window, QEvent *event) override;
    bool childMouseEventFilter(QQuickItem *item, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void touchEvent(QTouchEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    void openSoon();
    void open();
    void close();
    void fillHost();
    void takeFocus();
    void giveFocusBack();
    bool hasFocusInside() const;
    /// In the order of opening; in all windows.
    static QList<Modal *> &openModals();
    bool isInFront() const;
    bool isLeaving() const;
    /// Goes outwards from where this is declared, by way of the modals that it is part of.
    template <class Visit>
    void goOutwards(Visit visit) const;
    static Modal *topmostOf(const QQuickWindow *window);
    void moveFocus(bool forward);
    void arrive();
    void updateBusy();

    QPointer<QQuickItem> m_home; // where it is declared
    QPointer<QQuickItem> m_host; // what it fills
    QPointer<QQuickItem> m_panel;
    QPointer<QQuickItem> m_firstFocus;
    QPointer<QQuickItem> m_returnFocus;
    bool m_returnFocusVisible = false;
    QVariantAnimation m_motion;
    QBasicTimer m_settling;
    qreal m_openness = 0;
    int m_duration = 0;
    bool m_shown = false;
    bool m_open = false;
    bool m_busy = false;
    bool m_tapBesideDismisses = false;
    bool m_pressedBeside = false;
};

} // namespace clockwell
