#pragma once

#include "attendance/AttendanceStore.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QPointer>
#include <QQmlParserStatus>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// Base of the view models of the attendance tabs: holds the store, knows whether the screen is in front, and
/// loads data. After a failed load the screen keeps its content. Main thread only; the store is not owned.
class TabViewModel : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    QML_ANONYMOUS
    Q_PROPERTY(
        clockwell::AttendanceStore *attendance READ attendance WRITE setAttendance NOTIFY attendanceChanged)
    /// Whether the screen is in front.
    Q_PROPERTY(bool shown READ isShown WRITE setShown NOTIFY shownChanged)
    /// Whether a load is running. `refreshing`: whether the user requested it.
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
    /// Loads at the user's request.
    void refresh();

Q_SIGNALS:
    void attendanceChanged();
    void shownChanged();
    void loadingChanged();

protected:
    explicit TabViewModel(QObject *parent);

    /// The screen was shown; all properties are set.
    virtual void appeared() = 0;
    /// The store has changed or is null: connects to its signals and shows its data.
    virtual void observeStore() = 0;
    /// Updates texts that depend on the day or on the device's settings, which may have changed while the app
    /// was in the background.
    virtual void updateTexts() = 0;
    /// Sends the request of a load. Called only while there is a store.
    virtual QCoro::Task<> request() = 0;

    QCoro::Task<> load();
    /// Loads unless this screen has loaded before, successfully or not. Returns whether it has loaded before.
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
    bool m_complete = true; // false while QML is setting the properties
};

} // namespace clockwell
