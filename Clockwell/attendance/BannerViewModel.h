#pragma once

#include "attendance/AttendanceStore.h"

#include <QColor>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// The store's banner as it is shown, and the time it stays: each one is dismissed after `interval`, counted
/// from its own appearance, and anew each time that its screen comes back to the front: no time runs while
/// nobody can see it. Lives as long as the banner's place on the screen does. Main thread only.
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
    // While a banner leaves the screen it still shows what it said.
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
    /// A banner came, be it in the place of another with the same text.
    void appeared();

private:
    void follow();
    void count();

    QPointer<AttendanceStore> m_attendance;
    Banner m_last;
    bool m_present = false;
    bool m_shown = false;
    QTimer m_timer;
};

} // namespace clockwell
