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
    static constexpr int mostLosses = 3; ///< of connections; several may be left from before a restart

    /// `again`: lets one on at a time; it belongs to all transactions that may meet, and outlives this.
    Retries(const Wait &wait, Turns &again) : m_wait(wait), m_again(again) {}

    /// Returns when the transaction is to be run again: after a conflict with others once it has the turn to
    /// do so, which it keeps until it is over, and after a pause that is longer each time and of random
    /// length; after a lost connection, or a wait for a lock, at once. Throws the error otherwise; when it
    /// has to be run again but the time is over, one of kind Busy.
    void pauseOrThrow(const DatabaseError &error);

private:
    void pauseAfterConflict(const DatabaseError &error);

    const Wait m_wait;
    Turns &m_again;
    std::optional<Turn> m_turn;
    std::chrono::microseconds m_pause{5000}; // about as long as a transaction of a busy server
    int m_losses = 0;
};

} // namespace clockwell::server
