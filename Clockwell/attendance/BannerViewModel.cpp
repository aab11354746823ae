#include "attendance/BannerViewModel.h"

#include "ui/Palette.h"

#include <utility>

namespace clockwell {

BannerViewModel::BannerViewModel(QObject *parent) : QObject(parent)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer); // the default type may fire 5 % early
    m_timer.setInterval(defaultInterval);
    connect(&m_timer, &QTimer::timeout, this, &BannerViewModel::dismiss);
}

void BannerViewModel::setAttendance(AttendanceStore *attendance)
{
    if (m_attendance == attendance)
        return;
    if (m_attendance)
        m_attendance->disconnect(this);
    m_attendance = attendance;
    if (attendance)
        connect(attendance, &AttendanceStore::bannerChanged, this, &BannerViewModel::updateBanner);
    Q_EMIT attendanceChanged();
    updateBanner();
}

void BannerViewModel::setShown(bool shown)
{
    if (std::exchange(m_shown, shown) == shown)
        return;
    updateTimer();
    Q_EMIT shownChanged();
}

void BannerViewModel::setInterval(int interval)
{
    if (interval == m_timer.interval())
        return;
    m_timer.setInterval(interval);
    Q_EMIT intervalChanged();
}

void BannerViewModel::updateBanner()
{
    const bool present = isPresent();
    if (present)
        m_last = *m_attendance->banner();
    updateTimer();
    Q_EMIT bannerChanged();
    // Signal changes only: without a banner at the start there is nothing to slide out.
    if (std::exchange(m_present, present) != present)
        Q_EMIT presentChanged();
    if (present)
        Q_EMIT appeared();
}

void BannerViewModel::updateTimer()
{
    if (isPresent() && m_shown)
        m_timer.start();
    else
        m_timer.stop();
}

void BannerViewModel::dismiss()
{
    if (m_attendance)
        m_attendance->setBanner({});
}

QString BannerViewModel::symbol() const
{
    switch (m_last.kind) {
    case Banner::Kind::Success:
        return QStringLiteral("checkmark.circle.fill");
    case Banner::Kind::Error:
        return QStringLiteral("exclamationmark.triangle.fill");
    case Banner::Kind::Info:
        break;
    }
    return QStringLiteral("info.circle.fill");
}

QColor BannerViewModel::color() const
{
    switch (m_last.kind) {
    case Banner::Kind::Success:
        return QColor::fromRgb(palette::success);
    case Banner::Kind::Error:
        return QColor::fromRgb(palette::danger);
    case Banner::Kind::Info:
        break;
    }
    return QColor::fromRgb(palette::brand);
}

} // namespace clockwell
