#pragma once

#include "server/storage/DatabaseError.h"
#include "server/storage/Turns.h"

#include <chrono>
#include <optional>

namespace clockwell::server {

/// Decides whether a transaction that failed is run again. Used by one thread.
class Retries
{
public:
    static constexpr int mostLostConnections = 3; ///< several may be left from before a restart

    /// `turns`: one for all transactions of this process that may conflict, so that one of them is retried at
    /// a time; outlives this.
    Retries(const Wait &wait, Turns &turns) : m_wait(wait), m_turns(turns) {}

    /// Returns when the transaction is to be run again:
    /// - after a conflict, once it has its turn, which it keeps until it is over, and after a random pause,
    ///   longer each time;
    /// - after a lost connection or a lock timeout, at once.
    /// Throws any other error, and a lost connection when there were too many or the time is over. A conflict
    /// or a lock timeout is then thrown as Busy.
    void pauseOrThrow(const DatabaseError &error);

private:
    void pauseAfterConflict(const DatabaseError &error);

    const Wait m_wait;
    Turns &m_turns;
    std::optional<Turn> m_turn;
    std::chrono::microseconds m_pause{5000}; // about as long as a transaction of a busy server
    int m_lostConnections = 0;
};

} // namespace clockwell::server
