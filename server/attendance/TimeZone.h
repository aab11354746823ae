#pragma once

#include "server/attendance/CalendarDay.h"
#include "server/storage/Instant.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace clockwell::server {

/// An office's time zone with all its clock changes. Cheap to copy; safe on several threads.
///
/// The rule for days: an instant belongs to the date that the office's wall clock shows at it. Days have 23
/// or 25 hours when the clock changes; all durations are counted in elapsed time, never in wall-clock
/// differences.
class TimeZone
{
public:
    /// The zone with this IANA name, e.g. "Europe/Berlin"; nothing when there is no such zone.
    static std::optional<TimeZone> named(const std::string &name);
    /// The zone of this machine, or UTC when it cannot be told.
    static TimeZone ofMachine();

    const std::string &name() const { return m_name; }

    /// The date on the wall calendar at this instant.
    Day dayOf(Instant instant) const;

    /// What the wall clock shows at this instant, from 00:00 on.
    std::chrono::milliseconds timeOfDay(Instant instant) const;

    /// The first instant at which the wall clock shows this time of this day or a later one (`minute` counts
    /// from midnight, 0 to 1440). So a time that a clock change skips happens at the end of the gap, and a
    /// time that is shown twice happens the first time.
    Instant at(Day day, int minute) const;

    /// The instants at which the wall clock shows exactly this time of this day, the earlier one first:
    /// mostly one, none for a time that a clock change skips, two for one that is shown twice.
    std::vector<Instant> showing(Day day, int minute) const;

    /// How far the wall clock is ahead of UTC at this instant.
    std::chrono::milliseconds offsetAt(Instant instant) const;

private:
    using Zone = std::shared_ptr<const void>; // ICU's headers stay out of everybody else's
    TimeZone(std::string name, Zone zone) : m_name(std::move(name)), m_zone(std::move(zone)) {}

    std::string m_name;
    Zone m_zone;
};

} // namespace clockwell::server
