#include "server/auth/RateLimit.h"

#include "server/auth/ClockSkew.h"
#include "server/auth/TooManyAttempts.h"

#include <algorithm>
#include <tuple>
#include <utility>
#include <vector>

namespace clockwell::server {

namespace {

constexpr long long fewLeftovers = 20; // more than one use adds

} // namespace

struct RateLimit::Event
{
    long long at = 0;
    long long number = 0;
    auto columns() { return std::tie(at, number); }
};

RateLimit::State RateLimit::look(Connection &connection, const Subject &subject, Instant now) const
{
    State state;
    std::vector<Instant> counted; // in order of time
    for (const Event &event :
         connection.all<Event>("SELECT at, number FROM counted_events WHERE kind = :kind"
                               " AND subject = :subject AND network = :network ORDER BY at",
                               m_kind, subject.name, subject.network)) {
        state.newest = std::max(state.newest, event.number);
        state.isAhead = state.isAhead || clockwell::server::isAhead(event.at, now);
        const Instant at = std::min(fromMillis(event.at), now);
        if (at + m_limits.window > now)
            counted.push_back(at);
    }
    if (counted.size() >= m_limits.attempts) {
        auto next = counted.front() + m_limits.window;
        if (m_limits.pause > std::chrono::seconds{0})
            next = std::min(next, counted.back() + m_limits.pause);
        state.wait = std::max(std::chrono::seconds{0}, std::chrono::ceil<std::chrono::seconds>(next - now));
    }
    state.hasLeftovers =
        connection
            .first<SingleColumn<long long>>(
                "SELECT ends_at FROM counted_events WHERE ends_at <= :now LIMIT 1", toMillis(now))
            .has_value();
    return state;
}

void RateLimit::require(const State &state, std::string_view complaint)
{
    if (state.wait > std::chrono::seconds{0})
        throw tooManyAttempts(complaint, state.wait);
}

std::optional<long long> RateLimit::tryTake(Connection &connection, const Subject &subject, State &state,
                                            Instant now) const
{
    if (state.wait > std::chrono::seconds{0})
        return {};
    if (add(connection, subject, state.newest + 1, now))
        return state.newest + 1;
    state = look(connection, subject, now);
    if (state.wait > std::chrono::seconds{0} || !add(connection, subject, state.newest + 1, now))
        return {};
    return state.newest + 1;
}

bool RateLimit::tryTake(Connection &connection, const Subject &subject, Instant now) const
{
    State state = look(connection, subject, now);
    if (state.isAhead)
        bringBack(connection, subject, now);
    const bool taken = tryTake(connection, subject, state, now).has_value();
    tidy(connection, state, now);
    return taken;
}

void RateLimit::giveBack(Connection &connection, const Subject &subject, long long event) const
{
    connection.execute("DELETE FROM counted_events WHERE kind = :kind AND subject = :subject"
                       " AND network = :network AND number = :number",
                       m_kind, subject.name, subject.network, event);
}

void RateLimit::forget(Connection &connection, const Subject &subject) const
{
    connection.execute("DELETE FROM counted_events WHERE kind = :kind AND subject = :subject"
                       " AND network = :network",
                       m_kind, subject.name, subject.network);
}

void RateLimit::forgetAll(Connection &connection, const std::string &name) const
{
    connection.execute("DELETE FROM counted_events WHERE kind = :kind AND subject = :subject", m_kind, name);
}

void RateLimit::bringBack(Connection &connection, const Subject &subject, Instant now) const
{
    connection.execute("UPDATE counted_events SET at = :at, ends_at = :end WHERE kind = :kind"
                       " AND subject = :subject AND network = :network AND at > :now",
                       toMillis(now), toMillis(now + m_limits.window), m_kind, subject.name, subject.network,
                       toMillis(now));
}

void RateLimit::tidy(Connection &connection, State &state, Instant now)
{
    if (std::exchange(state.hasLeftovers, false))
        connection.execute("DELETE FROM counted_events WHERE (kind, subject, network, number) IN"
                           " (SELECT kind, subject, network, number FROM counted_events"
                           " WHERE ends_at <= :now ORDER BY ends_at LIMIT :few)",
                           toMillis(now), fewLeftovers);
}

/// False, with nothing counted, when the number is taken.
bool RateLimit::add(Connection &connection, const Subject &subject, long long number, Instant now) const
{
    return connection.execute("INSERT INTO counted_events (kind, subject, network, number, at, ends_at)"
                              " VALUES (:kind, :subject, :network, :number, :at, :end)"
                              " ON CONFLICT (kind, subject, network, number) DO NOTHING",
                              m_kind, subject.name, subject.network, number, toMillis(now),
                              toMillis(now + m_limits.window)) == 1;
}

} // namespace clockwell::server
