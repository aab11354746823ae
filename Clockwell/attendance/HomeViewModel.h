#pragma once

#include "attendance/AttendanceStore.h"
#include "attendance/DateFormats.h"
#include "attendance/LocationManager.h"

#include <QColor>
#include <QCoro/QCoroTask>
#include <QObject>
#include <QPointer>
#include <QQmlParserStatus>
#include <QtQml/qqmlregistration.h>

#include <functional>

namespace clockwell {

/// Everything that the home screen shows, as finished texts, symbols and colours, and what its controls do.
/// Holds no rule of attendance: what is offered follows from the server's answers. Main thread only.
class HomeViewModel : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    QML_ELEMENT
    Q_PROPERTY(
        clockwell::AttendanceStore *attendance READ attendance WRITE setAttendance NOTIFY attendanceChanged)
    Q_PROPERTY(clockwell::LocationManager *location READ location WRITE setLocation NOTIFY locationChanged)
    Q_PROPERTY(QString fullName READ fullName WRITE setFullName NOTIFY momentChanged)
    /// Whether the screen is in front; each time it becomes so, the day and the distance are loaded anew.
    Q_PROPERTY(bool shown READ isShown WRITE setShown NOTIFY shownChanged)

    Q_PROPERTY(QString greeting READ greeting NOTIFY momentChanged)
    Q_PROPERTY(QString dateLine READ dateLine NOTIFY momentChanged)

    Q_PROPERTY(QString officeName READ officeName NOTIFY todayChanged)
    Q_PROPERTY(QString hoursLine READ hoursLine NOTIFY todayChanged)
    Q_PROPERTY(QString recordStatus READ recordStatus NOTIFY todayChanged)
    Q_PROPERTY(bool hasRecord READ hasRecord NOTIFY todayChanged)
    Q_PROPERTY(QString checkInText READ checkInText NOTIFY todayChanged)
    Q_PROPERTY(QString checkOutText READ checkOutText NOTIFY todayChanged)
    Q_PROPERTY(QString workedText READ workedText NOTIFY todayChanged)
    Q_PROPERTY(bool dayComplete READ isDayComplete NOTIFY todayChanged)
    Q_PROPERTY(QString punchTitle READ punchTitle NOTIFY todayChanged)
    Q_PROPERTY(QColor punchColor READ punchColor NOTIFY todayChanged)

    Q_PROPERTY(bool located READ isLocated NOTIFY liveChanged)
    Q_PROPERTY(QString geofenceSymbol READ geofenceSymbol NOTIFY liveChanged)
    Q_PROPERTY(QColor geofenceColor READ geofenceColor NOTIFY liveChanged)
    Q_PROPERTY(QString distanceText READ distanceText NOTIFY liveChanged)
    Q_PROPERTY(QString insideText READ insideText NOTIFY liveChanged)
    Q_PROPERTY(QString nearestLine READ nearestLine NOTIFY liveChanged)
    Q_PROPERTY(QString locatingText READ locatingText NOTIFY busyChanged)
    Q_PROPERTY(QString hint READ hint NOTIFY hintChanged)

    /// Whether a refresh of the day that was asked for is under way; coming to the screen is none.
    Q_PROPERTY(bool refreshing READ isRefreshing NOTIFY refreshingChanged)
    Q_PROPERTY(bool loadingToday READ isLoadingToday NOTIFY busyChanged)
    Q_PROPERTY(bool checkingDistance READ isCheckingDistance NOTIFY busyChanged)
    Q_PROPERTY(bool punching READ isPunching NOTIFY busyChanged)

public:
    using Clock = std::function<DateFormats::Instant()>;

    explicit HomeViewModel(QObject *parent = nullptr);
    HomeViewModel(Clock clock, DateFormats formats, QObject *parent = nullptr);

    AttendanceStore *attendance() const { return m_attendance; }
    void setAttendance(AttendanceStore *attendance);
    LocationManager *location() const { return m_location; }
    void setLocation(LocationManager *location);
    QString fullName() const { return m_fullName; }
    void setFullName(const QString &fullName);
    bool isShown() const { return m_shown; }
    void setShown(bool shown);

    QString greeting() const;
    QString dateLine() const;
    QString officeName() const;
    QString hoursLine() const;
    QString recordStatus() const;
    bool hasRecord() const { return record() != nullptr; }
    QString checkInText() const;
    QString checkOutText() const;
    QString workedText() const;
    bool isDayComplete() const;
    QString punchTitle() const;
    QColor punchColor() const;
    bool isLocated() const;
    QString geofenceSymbol() const;
    QColor geofenceColor() const;
    QString distanceText() const;
    QString insideText() const;
    QString nearestLine() const;
    QString locatingText() const;
    QString hint() const;
    bool isRefreshing() const { return m_refreshes > 0; }
    bool isLoadingToday() const { return m_attendance && m_attendance->loadingToday(); }
    bool isCheckingDistance() const { return m_attendance && m_attendance->checkingDistance(); }
    bool isPunching() const { return m_attendance && m_attendance->punching(); }

    void classBegin() override { m_complete = false; }
    void componentComplete() override;

public Q_SLOTS:
    void refreshToday();
    void refreshLocation();
    void punch();

Q_SIGNALS:
    void attendanceChanged();
    void locationChanged();
    void shownChanged();
    void momentChanged();
    void todayChanged();
    void liveChanged();
    void hintChanged();
    void busyChanged();
    void refreshingChanged();

private:
    const TodayResponse *today() const;
    const AttendanceRecord *record() const;
    const DistanceResponse *live() const;
    void appeared();
    QCoro::Task<> reload();
    QCoro::Task<> loadDay();
    void countRefreshes(bool begins);

    Clock m_clock;
    DateFormats m_formats;
    QPointer<AttendanceStore> m_attendance;
    QPointer<LocationManager> m_location;
    QString m_fullName;
    int m_refreshes = 0;
    bool m_shown = false;
    bool m_complete = true; // false while QML sets the properties one by one
};

} // namespace clockwell
