#pragma once

#include "attendance/AttendanceStore.h"

#include <QColor>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// Shows the store's banner and dismisses it after `interval`. The timer starts when the banner appears,
/// stops while its screen is hidden, and restarts when the screen is shown again. Lives as long as the
/// screen. Main thread only.
class BannerViewModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(
        clockwell::AttendanceStore *attendance READ attendance WRITE setAttendance NOTIFY attendanceChanged)
    /// Whether the banner's screen is in front.
    Q_PROPERTY(bool shown READ isShown WRITE setShown NOTIFY shownChanged)
    /// In milliseconds.
    Q_PROPERTY(int interval READ interval WRITE setInterval NOTIFY intervalChanged)
    /// Whether there is a banner.
    Q_PROPERTY(bool present READ isPresent NOTIFY presentChanged)
    Q_PROPERTY(QString text READ text NOTIFY bannerChanged)
    Q_PROPERTY(QString symbol READ symbol NOTIFY bannerChanged)
    Q_PROPERTY(QColor color READ color NOTIFY bannerChanged)

public:
    static constexpr int defaultInterval = 4000;

    explicit BannerViewModel(QObject *parent = nullptr);

    AttendanceStore *attendance() const { return m_attendance; }
    void setAttendance(AttendanceStore *attendance);
    bool isShown() const { return m_shown; }
    void setShown(bool shown);
    int interval() const { return m_timer.interval(); }
    void setInterval(int interval);

    bool isPresent() const { return m_attendance && m_attendance->banner(); }
    // Those of the last banner are kept, because it still shows them while it slides out.
    QString text() const { return m_last.text; }
    QString symbol() const;
    QColor color() const;

public Q_SLOTS:
    void dismiss();

Q_SIGNALS:
    void attendanceChanged();
    void shownChanged();
    void intervalChanged();
    void bannerChanged();
    void presentChanged();
    /// A banner appeared; also emitted when it replaces another with the same text.
    void appeared();

private:
    void updateBanner();
    void updateTimer();

    QPointer<AttendanceStore> m_attendance;
    Banner m_last;
    bool m_present = false;
    bool m_shown = false;
    QTimer m_timer;
};

} // namespace clockwell
