#pragma once

#include "server/mail/MailDelivery.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace clockwell::server {

struct MailQueueOptions
{
    std::size_t capacity = 1000; ///< messages that may wait; more are dropped, which is logged
    std::chrono::milliseconds flushLimit = std::chrono::seconds{5}; ///< at the end, for what still waits
    /// Pauses between the attempts for one message; after the last one it is dropped. Their sum is below the
    /// life of a code: later the message would be of no use.
    std::vector<std::chrono::milliseconds> pauses{std::chrono::seconds{2},  std::chrono::seconds{10},
                                                  std::chrono::seconds{30}, std::chrono::minutes{1},
                                                  std::chrono::minutes{2},  std::chrono::minutes{4}};
};

/// Delivers messages on a thread of its own, so that nobody waits for a mail server, and tries again what
/// failed for the time being. It keeps them in memory only, for they hold codes. Safe on several threads.
class MailQueue
{
public:
    explicit MailQueue(std::unique_ptr<MailDelivery> delivery, MailQueueOptions options = {});
    ~MailQueue(); ///< tries everything that waits once more, within the flush limit
    MailQueue(const MailQueue &) = delete;
    MailQueue &operator=(const MailQueue &) = delete;

    void post(Mail mail) noexcept;

private:
    using Time = std::chrono::steady_clock::time_point;
    struct Waiting
    {
        Mail mail;
        std::size_t failures = 0;
        Time due;
    };

    void run();
    std::deque<Waiting>::iterator nextDue();
    void attempt(Waiting waiting);
    void tryAgainLater(Waiting waiting, const DeliveryError &error);

    std::unique_ptr<MailDelivery> m_delivery;
    MailQueueOptions m_options;
    std::mutex m_lock; // guards the four below
    std::condition_variable m_changed;
    std::deque<Waiting> m_waiting;
    bool m_stopping = false;
    bool m_finished = false;
    std::atomic<bool> m_giveUp{false};
    std::thread m_thread; // last: it uses the members above
};

} // namespace clockwell::server
