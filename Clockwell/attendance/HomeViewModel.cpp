#include "attendance/HomeViewModel.h"

#include "attendance/HomeTexts.h"
#include "net/Liveness.h"
#include "ui/Palette.h"

namespace clockwell {

HomeViewModel::HomeViewModel(QObject *parent) : HomeViewModel(DateFormats::systemNow, DateFormats(), parent)
{}

HomeViewModel::HomeViewModel(DateFormats::Clock clock, DateFormats formats, QObject *parent)
    : TabViewModel(parent), m_clock(std::move(clock)), m_formats(std::move(formats))
{
    // The clock has no change signal, so greeting and date are updated whenever anything else on the screen
    // changes.
    for (const auto change : {&HomeViewModel::todayChanged, &HomeViewModel::liveChanged,
                              &HomeViewModel::busyChanged, &HomeViewModel::hintChanged})
        connect(this, change, this, &HomeViewModel::headerChanged);
}

void HomeViewModel::observeStore()
{
    if (AttendanceStore *store = attendance()) {
        connect(store, &AttendanceStore::todayChanged, this, &HomeViewModel::todayChanged);
        connect(store, &AttendanceStore::liveChanged, this, &HomeViewModel::liveChanged);
        connect(store, &AttendanceStore::loadingTodayChanged, this, &HomeViewModel::busyChanged);
        connect(store, &AttendanceStore::checkingDistanceChanged, this, &HomeViewModel::busyChanged);
        connect(store, &AttendanceStore::punchingChanged, this, &HomeViewModel::busyChanged);
        connect(store, &AttendanceStore::bannerChanged, this, &HomeViewModel::headerChanged);
    }
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
        Q_EMIT headerChanged();
}

void HomeViewModel::appeared()
{
    updateTexts();
    if (attendance())
        loadAll();
}

void HomeViewModel::updateTexts()
{
    Q_EMIT headerChanged();
}

QCoro::Task<> HomeViewModel::request()
{
    return attendance()->loadToday();
}

QCoro::Task<> HomeViewModel::loadAll()
{
    co_await whileAlive(this, load());
    if (attendance())
        co_await whileAlive(this, attendance()->checkDistance(m_location));
}

void HomeViewModel::refreshLocation()
{
    if (attendance())
        attendance()->checkDistance(m_location);
}

void HomeViewModel::punch()
{
    if (attendance())
        attendance()->punch(m_location);
}

QString HomeViewModel::greeting() const
{
    return home_texts::greeting(m_formats.hour(m_clock()), m_fullName);
}

QString HomeViewModel::dateLine() const
{
    return m_formats.longDate(m_clock());
}

QString HomeViewModel::officeName() const
{
    return home_texts::officeName(today());
}

QString HomeViewModel::hoursLine() const
{
    return home_texts::hoursLine(today());
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
    return home_texts::punchOffer(today()) == home_texts::PunchOffer::Complete;
}

QString HomeViewModel::punchTitle() const
{
    return home_texts::punchOffer(today()) == home_texts::PunchOffer::CheckOut ? QStringLiteral("Check Out")
                                                                               : QStringLiteral("Check In");
}

QColor HomeViewModel::punchColor() const
{
    return QColor::fromRgb(home_texts::punchOffer(today()) == home_texts::PunchOffer::CheckOut
                               ? palette::warning
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
    return live() ? home_texts::distance(live()->distanceMeters) : QString();
}

QString HomeViewModel::insideText() const
{
    if (!live())
        return {};
    return live()->inside ? QStringLiteral("Inside geofence") : QStringLiteral("Outside");
}

QString HomeViewModel::nearestLine() const
{
    return live() ? home_texts::nearestLine(*live()) : QString();
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
    return attendance() && attendance()->today() ? &*attendance()->today() : nullptr;
}

const AttendanceRecord *HomeViewModel::record() const
{
    return today() && today()->record ? &*today()->record : nullptr;
}

const DistanceResponse *HomeViewModel::live() const
{
    return attendance() && attendance()->live() ? &*attendance()->live() : nullptr;
}

} // namespace clockwell
