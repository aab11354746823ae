#pragma once

#include "server/mail/MailDelivery.h"
#include "server/mail/MailPace.h"

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace clockwell::server {

struct MailQueueOptions
{
    std::size_t deliveries = 4; ///< at once
    /// Messages of each precedence that may wait and be promised; twice as many are kept.
    std::size_t capacity = 5'000;
    /// That a promised message may take, by the estimate; a stranger's half of it.
    std::chrono::milliseconds longestWait = std::chrono::minutes{5};
    /// After that a message is of no use any more and dropped: the life of a code. At least twice the
    /// longest wait, so that estimates may be wrong and people's own messages come in between.
    std::chrono::milliseconds life = std::chrono::minutes{10};
    std::chrono::milliseconds flushLimit = std::chrono::seconds{10}; ///< at the end, for what still waits
    /// Pauses between the attempts for one message that was refused for the time being; after the last one
    /// it is dropped. Their sum is below its life.
    std::vector<std::chrono::milliseconds> pauses{std::chrono::seconds{2},  std::chrono::seconds{10},
                                                  std::chrono::seconds{30}, std::chrono::minutes{1},
                                                  std::chrono::minutes{2},  std::chrono::minutes{4}};
    /// While the way is closed for all messages it is tried in pauses that double between these two.
    std::chrono::milliseconds firstPause = std::chrono::seconds{1};
    std::chrono::milliseconds longestPause = std::chrono::seconds{30};
};

/// Delivers messages on threads of its own, so that nobody waits for a mail server, and tries again what
/// failed for the time being. People's own messages go before those of strangers. It keeps them in memory
/// only, for they hold codes. What it drops it logs, with the number of messages. Safe on several threads.
class MailQueue
{
public:
    explicit MailQueue(std::unique_ptr<MailDelivery> delivery, MailQueueOptions options = {});
    ~MailQueue(); ///< tries everything that waits once more, within the flush limit
    MailQueue(const MailQueue &) = delete;
    MailQueue &operator=(const MailQueue &) = delete;

    /// Messages for which excess() is above zero are delivered as well, but not at the expense of others:
    /// their life does not count when it is asked for.
    void post(Mail mail) noexcept;

    /// By how much one more message would take longer than `longestWait`, or make one that was promised
    /// arrive after its life; zero when it can be promised.
    std::chrono::seconds excess(Precedence precedence) const;

    struct Backlog
    {
        std::size_t messages = 0;       ///< that wait, also for another attempt
        std::chrono::seconds oldest{0}; ///< since the oldest of them was posted
    };
    Backlog backlog() const;

private:
    using Time = std::chrono::steady_clock::time_point;
    struct Waiting
    {
        Mail mail;
        Time posted;
        Time due;
        bool isPromised = false; // there was room for it
        std::size_t failures = 0;
    };
    using Line = std::deque<Waiting>;

    MailPace::Duration excess(Precedence precedence, Time now) const;
    void run();
    void work(std::unique_lock<std::mutex> &lock);
    void tryTheWay(std::unique_lock<std::mutex> &lock);
    std::optional<Waiting> takeDue(Time now);
    Time nextDue() const;
    void attempt(std::unique_lock<std::mutex> &lock, Waiting waiting);
    void tryAgainLater(Waiting waiting, const DeliveryError &error);
    void setWay(bool isOpen);
    void dropExpired(Time now);
    std::size_t waiting() const
    {
        return lineOf(Precedence::Own).size() + lineOf(Precedence::Stranger).size();
    }
    const Line &lineOf(Precedence precedence) const
    {
        return m_lines.at(static_cast<std::size_t>(precedence));
    }

    std::unique_ptr<MailDelivery> m_delivery;
    const MailQueueOptions m_options;
    mutable std::mutex m_lock; // guards what follows, but for m_giveUp
    std::condition_variable m_changed;
    std::array<Line, 2> m_lines; // by precedence
    MailPace m_pace;
    std::chrono::milliseconds m_pause{0}; // while the way is closed
    Time m_nextTry;
    bool m_isTrying = false;
    Time m_nextCleaning;
    bool m_stopping = false;
    std::size_t m_lostAtTheEnd = 0;
    std::size_t m_running = 0; // threads
    std::atomic<bool> m_giveUp{false};
    std::vector<std::thread> m_threads; // last: they use the members above
};

} // namespace clockwell::server
