#pragma once

#include <QtGlobal>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>

namespace clockwell {

/// Keeps work that began in one person's session out of the next one. Thread-safe.
class SessionGuard
{
public:
    using Epoch = quint64;

    Epoch current() const noexcept { return m_epoch.load(); }

    /// Ends the current epoch. When it returns, no write() of an older epoch is running any more, so whatever
    /// the caller stores next stays as it is.
    void advance() noexcept;

    /// Runs `change` on the stored tokens if `epoch` is still current. False when the epoch has ended, before
    /// or meanwhile; then `undo` has run if `change` had.
    bool write(Epoch epoch, const std::function<void()> &change, const std::function<void()> &undo = {});

private:
    // A secure store that hangs must not freeze the thread that signs out for longer than this.
    static constexpr std::chrono::seconds patience{2};

    std::atomic<Epoch> m_epoch{0};
    // Recursive, because a token store may itself be what notices the change of session.
    std::recursive_timed_mutex m_writing;
};

} // namespace clockwell
