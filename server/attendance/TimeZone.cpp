#include "server/attendance/TimeZone.h"

#include <unicode/basictz.h>
#include <unicode/timezone.h>
#include <unicode/tztrans.h>

#include <stdexcept>

namespace clockwell::server {

namespace {

using std::chrono::milliseconds;

const icu::BasicTimeZone &zoneOf(const std::shared_ptr<const void> &zone)
{
    return *static_cast<const icu::BasicTimeZone *>(zone.get());
}

std::string idOf(const icu::TimeZone &zone)
{
    icu::UnicodeString id;
    std::string text;
    zone.getID(id).toUTF8String(text);
    return text;
}

milliseconds offsetOf(const icu::BasicTimeZone &zone, Instant instant)
{
    int32_t raw = 0;
    int32_t daylight = 0;
    UErrorCode error = U_ZERO_ERROR;
    zone.getOffset(static_cast<UDate>(toMillis(instant)), false, raw, daylight, error);
    if (U_FAILURE(error))
        throw std::runtime_error{std::string{"no time zone offset: "} + u_errorName(error)};
    return milliseconds{raw + daylight};
}

/// The offset for a wall-clock time; where that is skipped or shown twice, the one before or after the clock
/// change.
milliseconds offsetForLocal(const icu::BasicTimeZone &zone, milliseconds local, UTimeZoneLocalOption which)
{
    int32_t raw = 0;
    int32_t daylight = 0;
    UErrorCode error = U_ZERO_ERROR;
    zone.getOffsetFromLocal(static_cast<UDate>(local.count()), which, which, raw, daylight, error);
    if (U_FAILURE(error))
        throw std::runtime_error{std::string{"no time zone offset: "} + u_errorName(error)};
    return milliseconds{raw + daylight};
}

} // namespace

std::optional<TimeZone> TimeZone::named(const std::string &name)
{
    std::shared_ptr<icu::TimeZone> zone{icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(name))};
    // ICU answers an unknown name with "no zone", and has a zone of that name in its data too.
    const bool usable = zone && idOf(*zone) != idOf(icu::TimeZone::getUnknown());
    const auto *basic = dynamic_cast<const icu::BasicTimeZone *>(zone.get());
    if (!usable || basic == nullptr)
        return std::nullopt;
    return TimeZone{name, Zone{zone, static_cast<const void *>(basic)}};
}

TimeZone TimeZone::ofMachine()
{
    const std::unique_ptr<icu::TimeZone> host{icu::TimeZone::detectHostTimeZone()};
    if (host) {
        if (auto zone = named(idOf(*host)))
            return *zone;
    }
    return named("UTC").value();
}

Day TimeZone::dayOf(Instant instant) const
{
    const auto local = instant.time_since_epoch() + offsetAt(instant);
    return Day{std::chrono::floor<std::chrono::days>(local)};
}

milliseconds TimeZone::timeOfDay(Instant instant) const
{
    const auto local = instant.time_since_epoch() + offsetAt(instant);
    return local - std::chrono::floor<std::chrono::days>(local);
}

Instant TimeZone::at(Day day, int minute) const
{
    const icu::BasicTimeZone &zone = zoneOf(m_zone);
    const milliseconds local = day.time_since_epoch() + std::chrono::minutes{minute};
    const Instant instant{local - offsetForLocal(zone, local, UCAL_TZ_LOCAL_FORMER)};
    if (instant.time_since_epoch() + offsetAt(instant) == local)
        return instant;
    icu::TimeZoneTransition change; // skipped: the moment at which the clock jumped over it
    if (!zone.getPreviousTransition(static_cast<UDate>(toMillis(instant)), true, change))
        return instant;
    return fromMillis(static_cast<long long>(change.getTime()));
}

std::vector<Instant> TimeZone::showing(Day day, int minute) const
{
    const milliseconds local = day.time_since_epoch() + std::chrono::minutes{minute};
    std::vector<Instant> instants;
    for (const auto which : {UCAL_TZ_LOCAL_FORMER, UCAL_TZ_LOCAL_LATTER}) {
        const Instant instant{local - offsetForLocal(zoneOf(m_zone), local, which)};
        const bool shown = instant.time_since_epoch() + offsetAt(instant) == local;
        if (shown && (instants.empty() || instants.back() != instant))
            instants.push_back(instant);
    }
    return instants;
}

milliseconds TimeZone::offsetAt(Instant instant) const
{
    return offsetOf(zoneOf(m_zone), instant);
}

} // namespace clockwell::server
