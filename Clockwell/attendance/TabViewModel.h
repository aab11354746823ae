#pragma once

#include "attendance/AttendanceStore.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QPointer>
#include <QQmlParserStatus>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// What the tabs of attendance have in common: a store that they show, that they know when they come to the
/// front, and loads. A load that fails leaves what was shown, silently. Main thread only; the store is not
/// owned.
class TabViewModel : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    QML_ANONYMOUS
    Q_PROPERTY(
        clockwell::AttendanceStore *attendance READ attendance WRITE setAttendance NOTIFY attendanceChanged)
    /// Whether the screen is in front.
    Q_PROPERTY(bool shown READ isShown WRITE setShown NOTIFY shownChanged)
    /// A load is under way; one that was asked for, rather than one that comes with the screen.
    Q_PROPERTY(bool loading READ isLoading NOTIFY loadingChanged)
    Q_PROPERTY(bool refreshing READ isRefreshing NOTIFY loadingChanged)

public:
    AttendanceStore *attendance() const { return m_attendance; }
    void setAttendance(AttendanceStore *attendance);
    bool isShown() const { return m_shown; }
    void setShown(bool shown);
    bool isLoading() const { return m_loads > 0; }
    bool isRefreshing() const { return m_refreshes > 0; }

    void classBegin() override { m_complete = false; }
    void componentComplete() override;

public Q_SLOTS:
    /// Loads because somebody asks for it.
    void refresh();

Q_SIGNALS:
    void attendanceChanged();
    void shownChanged();
    void loadingChanged();

protected:
    explicit TabViewModel(QObject *parent);

    /// The screen comes to the front, with all properties set.
    virtual void appeared() = 0;
    /// There is another store, or none any more: to connect to its signals and to take what it holds.
    virtual void attend() = 0;
    /// The device's settings or the day may have changed while the app was behind others.
    virtual void renew() = 0;
    /// The request behind a load; asked for only while there is a store.
    virtual QCoro::Task<> request() = 0;

    QCoro::Task<> load();
    /// Loads when this screen has never done so, whatever came of it. Whether it has done so before.
    bool loadOnce();

private:
    QCoro::Task<> reload();
    void countLoads(bool begins);
    void countRefreshes(bool begins);

    QPointer<AttendanceStore> m_attendance;
    int m_loads = 0;
    int m_refreshes = 0;
    bool m_loaded = false;
    bool m_shown = false;
    bool m_complete = true; // false while QML sets the properties one by one
};

} // namespace clockwell
