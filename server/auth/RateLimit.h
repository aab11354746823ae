#pragma once

#include "server/storage/Connection.h"
#include "server/storage/Instant.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace clockwell::server {

struct RateLimits
{
    std::size_t attempts = 5;         ///< events within the window before one is refused
    std::chrono::seconds window{900}; ///< counted back from now
    std::chrono::seconds pause{0};    ///< an event so long after the last one is never refused; 0: none is
};

/// Counts the events of each subject in a sliding window, in the database, so that they outlive a restart and
/// all servers share them. Events that are in the future happened before a clock was set back, nobody knows
/// when: they count as of now, so that they are neither forgiven nor held against anybody for longer than the
/// window. Everything is part of the caller's transaction. Safe on several threads.
///
/// Whoever counts looks first, in a transaction that only reads: so what is refused writes nothing. Each
/// event has the number after the last one that was seen, so that of several at once only one is counted, and
/// the others look again.
class RateLimit
{
public:
    /// `kind`: tells its rows from those of others; at most 16 characters.
    RateLimit(std::string kind, RateLimits limits) : m_kind(std::move(kind)), m_limits(limits) {}

    struct Subject
    {
        std::string name;
        std::string network = {};
    };

    /// One subject at one moment.
    struct State
    {
        std::chrono::seconds wait{0}; ///< zero when another event is within the limit
        long long newest = 0;         ///< number of an event
        bool isAhead = false;         ///< has events in the future: to be brought back before use
        bool hasLeftovers = false;    ///< there are events, of whatever kind, that count no more
    };

    State look(Connection &connection, const Subject &subject, Instant now) const;

    /// Throws ApiError 429 TOO_MANY_ATTEMPTS with Retry-After when there were too many: its text is
    /// `complaint` followed by when to try again.
    static void require(const State &state, std::string_view complaint);

    /// Counts an event and returns its number; nothing, without counting, when there were too many. Looks
    /// again when others came in between, and changes the state then.
    std::optional<long long> tryTake(Connection &connection, const Subject &subject, State &state,
                                     Instant now) const;
    /// The same after a look in the same transaction.
    bool tryTake(Connection &connection, const Subject &subject, Instant now) const;

    /// Counts this event no more.
    void giveBack(Connection &connection, const Subject &subject, long long event) const;

    /// Forgets what was counted for the subject.
    void forget(Connection &connection, const Subject &subject) const;
    /// Likewise, from all networks.
    void forgetAll(Connection &connection, const std::string &name) const;

    /// Makes events in the future events of now.
    void bringBack(Connection &connection, const Subject &subject, Instant now) const;

    /// Removes a few leftovers, if the state found any; only once for one state, so that a transaction that
    /// has to run again because of this runs without it.
    static void tidy(Connection &connection, State &state, Instant now);

private:
    struct Event;

    bool add(Connection &connection, const Subject &subject, long long number, Instant now) const;

    std::string m_kind;
    RateLimits m_limits;
};

} // namespace clockwell::server
