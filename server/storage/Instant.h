#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace clockwell::server {

/// A moment of time in UTC, to the millisecond.
using Instant = std::chrono::sys_time<std::chrono::milliseconds>;

/// Where the server takes the current time from; called on several threads at once.
using Clock = std::function<Instant()>;

Clock systemClock();

/// Milliseconds since 1970-01-01T00:00:00Z, the form in which the database keeps instants.
inline long long toMillis(Instant instant)
{
    return instant.time_since_epoch().count();
}
inline Instant fromMillis(long long millis)
{
    return Instant{std::chrono::milliseconds{millis}};
}

/// RFC 3339 text with milliseconds and Z, e.g. "2026-05-01T09:15:30.123Z".
std::string toIsoText(Instant instant);

} // namespace clockwell::server
