#include "attendance/HistoryViewModel.h"

#include "net/Liveness.h"

#include <QGuiApplication>

namespace clockwell {

HistoryViewModel::HistoryViewModel(QObject *parent) : HistoryViewModel(DateFormats(), parent) {}

HistoryViewModel::HistoryViewModel(DateFormats formats, QObject *parent)
    : QObject(parent), m_formats(formats), m_days(std::move(formats))
{
    // The device's settings may have changed while the app was behind others.
    if (auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        connect(application, &QGuiApplication::applicationStateChanged, &m_days, &HistoryModel::renewTexts);
}

void HistoryViewModel::setAttendance(AttendanceStore *attendance)
{
    if (m_attendance == attendance)
        return;
    if (m_attendance)
        m_attendance->disconnect(this);
    m_attendance = attendance;
    if (attendance)
        connect(attendance, &AttendanceStore::historyChanged, this, &HistoryViewModel::takeHistory);
    takeHistory();
    Q_EMIT attendanceChanged();
}

void HistoryViewModel::setShown(bool shown)
{
    if (std::exchange(m_shown, shown) == shown)
        return;
    Q_EMIT shownChanged();
    if (shown && m_complete)
        appeared();
}

void HistoryViewModel::componentComplete()
{
    m_complete = true;
    if (m_shown)
        appeared();
}

void HistoryViewModel::appeared()
{
    if (m_loaded)
        m_days.renewTexts();
    else if (m_attendance)
        load();
    m_loaded = m_loaded || m_attendance;
}

void HistoryViewModel::refresh()
{
    if (m_attendance)
        reload();
}

QString HistoryViewModel::sampleDay() const
{
    return m_formats.day(QStringLiteral("2025-03-03"));
}

void HistoryViewModel::takeHistory()
{
    const bool wasEmpty = isEmpty();
    m_days.setRecords(m_attendance ? m_attendance->history() : QList<AttendanceRecord>());
    if (isEmpty() != wasEmpty)
        Q_EMIT emptyChanged();
}

QCoro::Task<> HistoryViewModel::load()
{
    const BusyFlag busy(this, &HistoryViewModel::countLoads);
    co_await whileAlive(this, m_attendance->loadHistory());
}

QCoro::Task<> HistoryViewModel::reload()
{
    const BusyFlag busy(this, &HistoryViewModel::countRefreshes);
    co_await whileAlive(this, load());
}

void HistoryViewModel::countLoads(bool begins)
{
    m_loads += begins ? 1 : -1;
    Q_EMIT loadingChanged();
}

void HistoryViewModel::countRefreshes(bool begins)
{
    m_refreshes += begins ? 1 : -1;
    Q_EMIT loadingChanged();
}

} // namespace clockwell
