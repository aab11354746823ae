#include "attendance/SummaryViewModel.h"

#include "net/Liveness.h"

#include <QGuiApplication>

namespace clockwell {

namespace {

DateFormats::Instant systemNow()
{
    return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
}

} // namespace

SummaryViewModel::SummaryViewModel(QObject *parent) : SummaryViewModel(systemNow, DateFormats(), parent) {}

SummaryViewModel::SummaryViewModel(Clock clock, DateFormats formats, QObject *parent)
    : QObject(parent), m_clock(std::move(clock)), m_formats(std::move(formats))
{
    // The device's settings may have changed while the app was behind others.
    if (auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        connect(application, &QGuiApplication::applicationStateChanged, this,
                &SummaryViewModel::summaryChanged);
}

void SummaryViewModel::setAttendance(AttendanceStore *attendance)
{
    if (m_attendance == attendance)
        return;
    if (m_attendance)
        m_attendance->disconnect(this);
    m_attendance = attendance;
    if (attendance)
        connect(attendance, &AttendanceStore::summaryChanged, this, &SummaryViewModel::takeSummary);
    takeSummary();
    Q_EMIT attendanceChanged();
}

void SummaryViewModel::setShown(bool shown)
{
    if (std::exchange(m_shown, shown) == shown)
        return;
    Q_EMIT shownChanged();
    if (shown && m_complete)
        appeared();
}

void SummaryViewModel::componentComplete()
{
    m_complete = true;
    if (m_shown)
        appeared();
}

void SummaryViewModel::appeared()
{
    if (m_loaded)
        Q_EMIT summaryChanged(); // in the settings of now
    else if (m_attendance)
        load();
    m_loaded = m_loaded || m_attendance;
}

void SummaryViewModel::refresh()
{
    if (m_attendance)
        reload();
}

QString SummaryViewModel::monthTitle() const
{
    return summary() ? m_formats.month(summary()->month) : QString();
}

QString SummaryViewModel::totalWorked() const
{
    return summary() ? hoursAndMinutes(summary()->totalWorkingMinutes) : QString();
}

QString SummaryViewModel::totalSpoken() const
{
    return summary() ? QStringLiteral("Total worked, %1 this month").arg(totalWorked()) : QString();
}

const MonthlySummary *SummaryViewModel::summary() const
{
    return m_attendance && m_attendance->summary() ? &*m_attendance->summary() : nullptr;
}

void SummaryViewModel::takeSummary()
{
    m_tiles.setSummary(summary() ? m_attendance->summary() : std::nullopt);
    Q_EMIT summaryChanged();
}

QCoro::Task<> SummaryViewModel::load()
{
    const BusyFlag busy(this, &SummaryViewModel::countLoads);
    co_await whileAlive(this, m_attendance->loadSummary(m_formats.monthKey(m_clock())));
}

QCoro::Task<> SummaryViewModel::reload()
{
    const BusyFlag busy(this, &SummaryViewModel::countRefreshes);
    co_await whileAlive(this, load());
}

void SummaryViewModel::countLoads(bool begins)
{
    m_loads += begins ? 1 : -1;
    Q_EMIT loadingChanged();
}

void SummaryViewModel::countRefreshes(bool begins)
{
    m_refreshes += begins ? 1 : -1;
    Q_EMIT loadingChanged();
}

} // namespace clockwell
