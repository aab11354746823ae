#pragma once

#include "attendance/AttendanceStore.h"
#include "attendance/DateFormats.h"
#include "attendance/SummaryTiles.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QPointer>
#include <QQmlParserStatus>
#include <QtQml/qqmlregistration.h>

#include <functional>

namespace clockwell {

/// What the summary shows and when the current month is loaded: the first time that it comes to the front,
/// and whenever it is asked for. A load that fails leaves what was shown, silently. Main thread only.
class SummaryViewModel : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    QML_ELEMENT
    Q_PROPERTY(
        clockwell::AttendanceStore *attendance READ attendance WRITE setAttendance NOTIFY attendanceChanged)
    /// Whether the screen is in front.
    Q_PROPERTY(bool shown READ isShown WRITE setShown NOTIFY shownChanged)
    /// Before the first answer there is nothing to say: the texts are empty.
    Q_PROPERTY(bool present READ isPresent NOTIFY summaryChanged)
    Q_PROPERTY(QString monthTitle READ monthTitle NOTIFY summaryChanged)
    Q_PROPERTY(clockwell::SummaryTiles *tiles READ tiles CONSTANT)
    Q_PROPERTY(QString totalWorked READ totalWorked NOTIFY summaryChanged)
    /// The card of the total as a screen reader says it.
    Q_PROPERTY(QString totalSpoken READ totalSpoken NOTIFY summaryChanged)
    /// A load is under way; one that was asked for.
    Q_PROPERTY(bool loading READ isLoading NOTIFY loadingChanged)
    Q_PROPERTY(bool refreshing READ isRefreshing NOTIFY loadingChanged)

public:
    using Clock = std::function<DateFormats::Instant()>;

    explicit SummaryViewModel(QObject *parent = nullptr);
    SummaryViewModel(Clock clock, DateFormats formats, QObject *parent = nullptr);

    AttendanceStore *attendance() const { return m_attendance; }
    void setAttendance(AttendanceStore *attendance);
    bool isShown() const { return m_shown; }
    void setShown(bool shown);

    bool isPresent() const { return summary() != nullptr; }
    QString monthTitle() const;
    SummaryTiles *tiles() { return &m_tiles; }
    QString totalWorked() const;
    QString totalSpoken() const;
    bool isLoading() const { return m_loads > 0; }
    bool isRefreshing() const { return m_refreshes > 0; }

    void classBegin() override { m_complete = false; }
    void componentComplete() override;

public Q_SLOTS:
    void refresh();

Q_SIGNALS:
    void attendanceChanged();
    void shownChanged();
    void summaryChanged();
    void loadingChanged();

private:
    const MonthlySummary *summary() const;
    void appeared();
    void takeSummary();
    QCoro::Task<> load();
    QCoro::Task<> reload();
    void countLoads(bool begins);
    void countRefreshes(bool begins);

    Clock m_clock;
    DateFormats m_formats;
    SummaryTiles m_tiles;
    QPointer<AttendanceStore> m_attendance;
    int m_loads = 0;
    int m_refreshes = 0;
    bool m_loaded = false; // asked for once by this screen, whatever came of it
    bool m_shown = false;
    bool m_complete = true; // false while QML sets the properties one by one
};

} // namespace clockwell
