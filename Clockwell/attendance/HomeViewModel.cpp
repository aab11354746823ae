#include "attendance/HomeViewModel.h"

#include "attendance/HomeTexts.h"
#include "net/Liveness.h"
#include "ui/Palette.h"

#include <QGuiApplication>

namespace clockwell {

namespace {

DateFormats::Instant systemNow()
{
    return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
}

} // namespace

HomeViewModel::HomeViewModel(QObject *parent) : HomeViewModel(systemNow, DateFormats(), parent) {}

HomeViewModel::HomeViewModel(Clock clock, DateFormats formats, QObject *parent)
    : QObject(parent), m_clock(std::move(clock)), m_formats(std::move(formats))
{
    // The day may have changed while the app was behind others.
    if (auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        connect(application, &QGuiApplication::applicationStateChanged, this, &HomeViewModel::momentChanged);
}

void HomeViewModel::setAttendance(AttendanceStore *attendance)
{
    if (m_attendance == attendance)
        return;
    if (m_attendance)
        m_attendance->disconnect(this);
    m_attendance = attendance;
    if (attendance) {
        connect(attendance, &AttendanceStore::todayChanged, this, &HomeViewModel::todayChanged);
        connect(attendance, &AttendanceStore::todayChanged, this, &HomeViewModel::momentChanged);
        connect(attendance, &AttendanceStore::liveChanged, this, &HomeViewModel::liveChanged);
        connect(attendance, &AttendanceStore::loadingTodayChanged, this, &HomeViewModel::busyChanged);
        connect(attendance, &AttendanceStore::checkingDistanceChanged, this, &HomeViewModel::busyChanged);
        connect(attendance, &AttendanceStore::punchingChanged, this, &HomeViewModel::busyChanged);
    }
    Q_EMIT attendanceChanged();
    Q_EMIT todayChanged();
    Q_EMIT liveChanged();
    Q_EMIT busyChanged();
}

void HomeViewModel::setLocation(LocationManager *location)
{
    if (m_location == location)
        return;
    if (m_location)
        m_location->disconnect(this);
    m_location = location;
    if (location)
        connect(location, &LocationManager::authorizationChanged, this, &HomeViewModel::hintChanged);
    Q_EMIT locationChanged();
    Q_EMIT hintChanged();
}

void HomeViewModel::setFullName(const QString &fullName)
{
    if (std::exchange(m_fullName, fullName) != fullName)
        Q_EMIT momentChanged();
}

void HomeViewModel::setShown(bool shown)
{
    if (std::exchange(m_shown, shown) == shown)
        return;
    Q_EMIT shownChanged();
    if (shown && m_complete)
        appeared();
}

void HomeViewModel::componentComplete()
{
    m_complete = true;
    if (m_shown)
        appeared();
}

void HomeViewModel::appeared()
{
    Q_EMIT momentChanged();
    reload();
}

QCoro::Task<> HomeViewModel::reload()
{
    if (!m_attendance)
        co_return;
    co_await whileAlive(this, m_attendance->loadToday());
    if (m_attendance)
        co_await whileAlive(this, m_attendance->checkDistance(m_location));
}

void HomeViewModel::refreshToday()
{
    if (m_attendance)
        loadDay();
}

QCoro::Task<> HomeViewModel::loadDay()
{
    const BusyFlag busy(this, &HomeViewModel::countRefreshes);
    co_await whileAlive(this, m_attendance->loadToday());
}

void HomeViewModel::countRefreshes(bool begins)
{
    m_refreshes += begins ? 1 : -1;
    Q_EMIT refreshingChanged();
}

void HomeViewModel::refreshLocation()
{
    if (m_attendance)
        m_attendance->checkDistance(m_location);
}

void HomeViewModel::punch()
{
    if (m_attendance)
        m_attendance->punch(m_location);
}

QString HomeViewModel::greeting() const
{
    return home::greeting(m_formats.hour(m_clock()), m_fullName);
}

QString HomeViewModel::dateLine() const
{
    return m_formats.longDate(m_clock());
}

QString HomeViewModel::officeName() const
{
    return home::officeName(today());
}

QString HomeViewModel::hoursLine() const
{
    return home::hoursLine(today());
}

QString HomeViewModel::recordStatus() const
{
    return record() ? record()->status : QString();
}

QString HomeViewModel::checkInText() const
{
    return m_formats.time(record() ? record()->checkInAt : std::nullopt);
}

QString HomeViewModel::checkOutText() const
{
    return m_formats.time(record() ? record()->checkOutAt : std::nullopt);
}

QString HomeViewModel::workedText() const
{
    return durationText(record() ? record()->workingMinutes : std::nullopt);
}

bool HomeViewModel::isDayComplete() const
{
    return home::punch(today()) == home::Punch::Complete;
}

QString HomeViewModel::punchTitle() const
{
    return home::punch(today()) == home::Punch::CheckOut ? QStringLiteral("Check Out")
                                                         : QStringLiteral("Check In");
}

QColor HomeViewModel::punchColor() const
{
    return QColor::fromRgb(home::punch(today()) == home::Punch::CheckOut ? palette::warning
                                                                         : palette::success);
}

bool HomeViewModel::isLocated() const
{
    return live() != nullptr;
}

QString HomeViewModel::geofenceSymbol() const
{
    return live() && live()->inside ? QStringLiteral("checkmark.shield.fill")
                                    : QStringLiteral("location.slash.fill");
}

QColor HomeViewModel::geofenceColor() const
{
    if (!live())
        return QColor::fromRgb(palette::textMuted);
    return QColor::fromRgb(live()->inside ? palette::success : palette::warning);
}

QString HomeViewModel::distanceText() const
{
    return live() ? home::distance(live()->distanceMeters) : QString();
}

QString HomeViewModel::insideText() const
{
    if (!live())
        return {};
    return live()->inside ? QStringLiteral("Inside geofence") : QStringLiteral("Outside");
}

QString HomeViewModel::nearestLine() const
{
    return live() ? home::nearestLine(*live()) : QString();
}

QString HomeViewModel::locatingText() const
{
    return isCheckingDistance() ? QStringLiteral("Locating") : QStringLiteral("Tap refresh");
}

QString HomeViewModel::hint() const
{
    const bool off = m_location && (m_location->authorization() == AuthorizationStatus::Denied ||
                                    m_location->authorization() == AuthorizationStatus::Restricted);
    return off ? QStringLiteral("Location is off. Enable it in Settings › Qor › Location.") : QString();
}

const TodayResponse *HomeViewModel::today() const
{
    return m_attendance && m_attendance->today() ? &*m_attendance->today() : nullptr;
}

const AttendanceRecord *HomeViewModel::record() const
{
    return today() && today()->record ? &*today()->record : nullptr;
}

const DistanceResponse *HomeViewModel::live() const
{
    return m_attendance && m_attendance->live() ? &*m_attendance->live() : nullptr;
}

} // namespace clockwell
