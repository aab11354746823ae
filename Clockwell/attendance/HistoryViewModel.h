#pragma once

#include "attendance/AttendanceStore.h"
#include "attendance/HistoryModel.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QPointer>
#include <QQmlParserStatus>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// What the history shows and when it is loaded: the first time that it comes to the front, and whenever it
/// is asked for. A load that fails leaves what was shown, silently. Main thread only.
class HistoryViewModel : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    QML_ELEMENT
    Q_PROPERTY(
        clockwell::AttendanceStore *attendance READ attendance WRITE setAttendance NOTIFY attendanceChanged)
    /// Whether the screen is in front.
    Q_PROPERTY(bool shown READ isShown WRITE setShown NOTIFY shownChanged)
    Q_PROPERTY(clockwell::HistoryModel *days READ days CONSTANT)
    Q_PROPERTY(bool empty READ isEmpty NOTIFY emptyChanged)
    /// A day in the device's locale, whichever: what stands for those to come.
    Q_PROPERTY(QString sampleDay READ sampleDay CONSTANT)
    /// A load is under way; one that was asked for.
    Q_PROPERTY(bool loading READ isLoading NOTIFY loadingChanged)
    Q_PROPERTY(bool refreshing READ isRefreshing NOTIFY loadingChanged)

public:
    explicit HistoryViewModel(QObject *parent = nullptr);
    explicit HistoryViewModel(DateFormats formats, QObject *parent = nullptr);

    AttendanceStore *attendance() const { return m_attendance; }
    void setAttendance(AttendanceStore *attendance);
    bool isShown() const { return m_shown; }
    void setShown(bool shown);
    HistoryModel *days() { return &m_days; }
    QString sampleDay() const;
    bool isEmpty() const { return m_days.rowCount() == 0; }
    bool isLoading() const { return m_loads > 0; }
    bool isRefreshing() const { return m_refreshes > 0; }

    void classBegin() override { m_complete = false; }
    void componentComplete() override;

public Q_SLOTS:
    void refresh();

Q_SIGNALS:
    void attendanceChanged();
    void shownChanged();
    void emptyChanged();
    void loadingChanged();

private:
    void appeared();
    void takeHistory();
    QCoro::Task<> load();
    QCoro::Task<> reload();
    void countLoads(bool begins);
    void countRefreshes(bool begins);

    DateFormats m_formats;
    HistoryModel m_days;
    QPointer<AttendanceStore> m_attendance;
    int m_loads = 0;
    int m_refreshes = 0;
    bool m_loaded = false; // asked for once by this screen, whatever came of it
    bool m_shown = false;
    bool m_complete = true; // false while QML sets the properties one by one
};

} // namespace clockwell
