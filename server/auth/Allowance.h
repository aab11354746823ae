#pragma once

#include "server/storage/Connection.h"
#include "server/storage/Instant.h"

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace clockwell::server {

struct AllowanceLimits
{
    double size = 1;                   ///< what may be spent at once
    std::chrono::seconds window{3600}; ///< in which all of it grows again, evenly
};

/// What was spent of an allowance up to a moment.
struct Spending
{
    double amount = 0;
    long long at = 0; ///< milliseconds since 1970

    /// What of it has not grown again by now. A moment in the future, from before the clock was set back,
    /// counts as now.
    double left(const AllowanceLimits &limits, Instant now) const;
};

/// An allowance for each subject: within any window at most twice its size is spent, and what was given back
/// does not count. In the database, so that it outlives a restart and all servers share it. Everything is
/// part of the caller's transaction. Safe on several threads.
///
/// Whoever spends looks first, in a transaction that only reads: so what is refused writes nothing. Each
/// spending is a row of its own, and far from the limit the one that writes does not look again, for of
/// transactions that look at what the others write only one is recorded at a time. So more than is allowed is
/// spent only when more than `margin` transactions are between their look and their end at one moment.
class Allowance
{
public:
    static constexpr double margin = 64;

    /// `kind`: tells its rows from those of others; at most 16 characters.
    Allowance(std::string kind, AllowanceLimits limits) : m_kind(std::move(kind)), m_limits(limits) {}

    /// One subject at one moment.
    struct State
    {
        double spent = 0;
        bool isAhead = false; ///< has moments of a clock that was set back since: to be settled before use
        bool isLong = false;  ///< has many rows
        std::vector<std::string> over; ///< a few subjects whose allowance has probably grown again
    };

    State look(Connection &connection, const std::string &subject, Instant now) const;

    /// Throws ApiError 429 TOO_MANY_ATTEMPTS with Retry-After when less than one is there: its text is
    /// `complaint` followed by when to try again.
    void require(const State &state, std::string_view complaint) const;

    /// Whether less than one is there; looks again when that is close, and changes the state then.
    bool isSpent(Connection &connection, const std::string &subject, State &state, Instant now) const;

    /// Spends what is there or not, so that it takes the longer to grow again; returns what to give it back
    /// by.
    std::string spend(Connection &connection, const std::string &subject, const State &state, double amount,
                      Instant now) const;

    void giveBack(Connection &connection, const std::string &subject, const std::string &spending,
                  double amount, Instant now) const;
    /// Gives back what somebody has spent, whoever it was.
    void giveBack(Connection &connection, const std::string &subject, double amount, Instant now) const;

    /// Makes one row of all of a subject's, or none when nothing is spent.
    void settle(Connection &connection, const std::string &subject, Instant now) const;

    /// Settles what the state found worth it, at most a few subjects; and only once for one state, so that a
    /// transaction that has to run again because of this runs without it.
    void tidy(Connection &connection, const std::string &subject, State &state, Instant now) const;

private:
    struct Row;

    void add(Connection &connection, const std::string &id, const std::string &subject, double amount,
             double spent, Instant now) const;
    bool isShort(double spent, double wanted) const;

    std::string m_kind;
    AllowanceLimits m_limits;
};

} // namespace clockwell::server
