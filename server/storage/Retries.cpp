#include "server/storage/Retries.h"

#include <random>
#include <thread>

namespace clockwell::server {

namespace {

constexpr std::chrono::microseconds longestPause{40'000}; // one of each server is left to conflict with

/// Between half the length and all of it.
std::chrono::microseconds jittered(std::chrono::microseconds length)
{
    static thread_local std::minstd_rand random{std::random_device{}()};
    return std::chrono::microseconds{
        std::uniform_int_distribution<long long>{length.count() / 2, length.count()}(random)};
}

} // namespace

void Retries::pauseOrThrow(const DatabaseError &error)
{
    using Kind = DatabaseError::Kind;
    if (error.kind() == Kind::Conflict)
        return pauseAfterConflict(error);
    m_turn.reset(); // while this one reconnects or waits for a lock, another may be retried
    const bool isInTime = Wait::Clock::now() < m_wait.until;
    if (error.kind() == Kind::Locked && isInTime)
        return; // it has waited for the lock already
    if (error.kind() == Kind::Locked)
        throw DatabaseError{Kind::Busy, error.what(), error.sqlstate()};
    if (error.kind() != Kind::Lost || ++m_lostConnections > mostLostConnections || !isInTime)
        throw error;
}

/// Of transactions that conflict only one commits. Retried at the same time, the others would conflict again;
/// one after the other, they conflict only with new ones and with those of other servers.
void Retries::pauseAfterConflict(const DatabaseError &error)
{
    const DatabaseError busy{DatabaseError::Kind::Busy, error.what(), error.sqlstate()};
    if (!m_turn) {
        if (!m_turns.take(m_wait))
            throw DatabaseError{busy};
        m_turn.emplace(m_turns);
    }
    const auto pause = jittered(m_pause);
    if (Wait::Clock::now() + pause >= m_wait.until)
        throw DatabaseError{busy};
    std::this_thread::sleep_for(pause);
    m_pause = std::min(m_pause * 2, longestPause);
}

} // namespace clockwell::server
