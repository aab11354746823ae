#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QPointer>
#include <QQuickItem>
#include <QVariantAnimation>
#include <QtQml/qqmlregistration.h>

class QWheelEvent;

namespace clockwell {

/// The gesture of pulling a list down to refresh it, without its looks: how far the content of a Flickable is
/// pulled beyond its top, by finger, mouse, wheel or touchpad, and whether letting go refreshes. While
/// `refreshing` the content rests below its top, so that what turns there hides nothing of it; a content that
/// is scrolled stays where it is. To assistive technology it is a button, and a busy alert while it
/// refreshes.
///
/// Lengths are points, whole ones. Nothing of it works while the item is disabled or hidden. Main thread.
class PullToRefreshControl : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    /// A vertical Flickable whose bounds can be dragged over; not owned, set once.
    Q_PROPERTY(QQuickItem *flickable READ flickable WRITE setFlickable NOTIFY flickableChanged REQUIRED)
    /// Whether a refresh that this control (or a key) asked for is under way. Set by the screen.
    Q_PROPERTY(bool refreshing READ isRefreshing WRITE setRefreshing NOTIFY refreshingChanged)
    /// Of the content's way to and from its rest, in milliseconds; 0 for none.
    Q_PROPERTY(int duration MEMBER m_duration NOTIFY durationChanged)
    /// How far below its top the content rests.
    Q_PROPERTY(qreal rest MEMBER m_rest CONSTANT)
    /// How far the content is pulled beyond its top.
    Q_PROPERTY(qreal pull READ pull NOTIFY pullChanged)
    /// The part of the way to the threshold, 0 to 1.
    Q_PROPERTY(qreal progress READ progress NOTIFY pullChanged)
    /// The same as a turn, in whole steps of the eight spokes of a spinner, in degrees.
    Q_PROPERTY(int turn READ turn NOTIFY pullChanged)
    /// Where an indicator stands that comes down with the content, from where it rests; 0 or less.
    Q_PROPERTY(qreal indicatorOffset READ indicatorOffset NOTIFY pullChanged)
    /// What it is called for assistive technology.
    Q_PROPERTY(QString label READ label NOTIFY refreshingChanged)

public:
    /// A pull this long refreshes.
    static constexpr qreal threshold = 72;
    /// Wheel and touchpad do not say when they are let go: they are after this silence, in milliseconds.
    static constexpr int wheelSilence = 160;
    /// A wheel that scrolled to the top does not pull until it has been silent for this long.
    static constexpr int wheelPause = 300;

    explicit PullToRefreshControl(QQuickItem *parent = nullptr);

    QQuickItem *flickable() const { return m_flickable; }
    void setFlickable(QQuickItem *flickable);
    bool isRefreshing() const { return m_refreshing; }
    void setRefreshing(bool refreshing);
    qreal pull() const { return m_pull; }
    qreal progress() const { return qMin(1.0, m_pull / threshold); }
    int turn() const { return static_cast<int>(progress() * 8) * 45; }
    qreal indicatorOffset() const { return m_refreshing ? 0 : qMin(0.0, qRound(m_pull) - m_rest); }
    QString label() const;

    /// Asks for a refresh, unless one is under way.
    Q_INVOKABLE void refresh();

Q_SIGNALS:
    /// The screen loads, and says so by `refreshing` at once.
    void triggered();
    void flickableChanged();
    void refreshingChanged();
    void durationChanged();
    void pullChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;

private Q_SLOTS:
    void letGo();
    void updatePull();

private:
    qreal top() const;
    bool isDragging() const;
    bool canRefresh() const { return isEnabled() && isVisible() && !m_refreshing; }
    bool takeWheel(const QWheelEvent &event);
    void letWheelGo();
    void holdBelowTop();
    void slideToTop();
    void slide(qreal to);
    void setMargin(qreal more);
    void moveTo(qreal beyondTop);

    QPointer<QQuickItem> m_flickable;
    QVariantAnimation m_slide; // of how far the content is beyond its top
    QBasicTimer m_wheelTimer;
    QElapsedTimer m_wheelElsewhere; // since the wheel last scrolled the content
    qreal m_wheelPull = 0;          // before resistance
    qreal m_margin = 0;             // the flickable's own
    qreal m_rest = 56;
    qreal m_pull = 0;
    int m_duration = 0;
    bool m_refreshing = false;
    bool m_dragged = false;
    bool m_lettingGo = false;
};

} // namespace clockwell
