#pragma once

#include <QtGlobal>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>

namespace clockwell {

/// Prevents work that began in one session from changing the tokens of the next. Thread-safe.
class SessionGuard
{
public:
    using Epoch = quint64;

    Epoch current() const noexcept { return m_epoch.load(); }

    /// Ends the current epoch. When it returns, no write() of an older epoch is running any more (unless the
    /// wait exceeded its limit), so no such write() changes what the caller stores next.
    void advance() noexcept;

    /// Runs `change`, which changes the stored tokens, if `epoch` is still current. False if the epoch ended
    /// before or meanwhile; in the latter case it has also run `undo`.
    bool write(Epoch epoch, const std::function<void()> &change, const std::function<void()> &undo = {});

private:
    // Longest wait in advance(): a secure store that hangs must not block the thread that signs out any
    // longer.
    static constexpr std::chrono::seconds maxWait{2};

    std::atomic<Epoch> m_epoch{0};
    // Recursive, because a token store may itself trigger the change of session, and call advance(), during a
    // write.
    std::recursive_timed_mutex m_writing;
};

} // namespace clockwell
