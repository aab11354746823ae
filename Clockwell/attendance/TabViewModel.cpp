#include "attendance/TabViewModel.h"

#include "net/Liveness.h"

#include <QGuiApplication>

#include <utility>

namespace clockwell {

TabViewModel::TabViewModel(QObject *parent) : QObject(parent)
{
    if (auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        connect(
            application, &QGuiApplication::applicationStateChanged, this, [this] { updateTexts(); });
}

void TabViewModel::setAttendance(AttendanceStore *attendance)
{
    if (m_attendance == attendance)
        return;
    if (m_attendance)
        m_attendance->disconnect(this);
    m_attendance = attendance;
    observeStore();
    Q_EMIT attendanceChanged();
}

void TabViewModel::setShown(bool shown)
{
    if (std::exchange(m_shown, shown) == shown)
        return;
    Q_EMIT shownChanged();
    if (shown && m_complete)
        appeared();
}

void TabViewModel::componentComplete()
{
    m_complete = true;
    if (m_shown)
        appeared();
}

void TabViewModel::refresh()
{
    if (m_attendance)
        reload();
}

bool TabViewModel::loadOnce()
{
    if (m_loaded || !m_attendance)
        return m_loaded;
    m_loaded = true;
    load();
    return false;
}

QCoro::Task<> TabViewModel::load()
{
    const BusyFlag busy(this, &TabViewModel::countLoads);
    co_await whileAlive(this, request());
}

QCoro::Task<> TabViewModel::reload()
{
    const BusyFlag busy(this, &TabViewModel::countRefreshes);
    co_await whileAlive(this, load());
}

void TabViewModel::countLoads(bool begins)
{
    m_loads += begins ? 1 : -1;
    Q_EMIT loadingChanged();
}

void TabViewModel::countRefreshes(bool begins)
{
    m_refreshes += begins ? 1 : -1;
    Q_EMIT loadingChanged();
}

} // namespace clockwell
