#include "server/mail/MailQueue.h"

#include <spdlog/spdlog.h>

#include <algorithm>

namespace clockwell::server {

MailQueue::MailQueue(std::unique_ptr<MailDelivery> delivery, MailQueueOptions options)
    : m_delivery(std::move(delivery)), m_options(std::move(options)), m_thread([this] { run(); })
{}

MailQueue::~MailQueue()
{
    {
        std::unique_lock lock{m_lock};
        m_stopping = true;
        m_changed.notify_all();
        m_changed.wait_for(lock, m_options.flushLimit, [this] { return m_finished; });
        m_giveUp = true;
    }
    m_thread.join();
    if (!m_waiting.empty())
        spdlog::warn("event=mailDropped reason=stopping messages={}", m_waiting.size());
}

void MailQueue::post(Mail mail) noexcept
{
    try {
        const std::lock_guard lock{m_lock};
        if (m_waiting.size() < m_options.capacity) {
            m_waiting.push_back({std::move(mail), 0, std::chrono::steady_clock::now()});
            m_changed.notify_all();
            return;
        }
        spdlog::error("event=mailDropped reason=queueFull");
    } catch (const std::exception &) { // out of memory: the message is lost like one that a mail server loses
    }
}

void MailQueue::run()
{
    std::unique_lock lock{m_lock};
    while (!m_giveUp) {
        const auto next = nextDue();
        if (next == m_waiting.end()) {
            if (m_stopping)
                break;
            m_changed.wait(lock);
        } else if (!m_stopping && next->due > std::chrono::steady_clock::now()) {
            const Time due = next->due; // of its own: the queue may move while this waits
            m_changed.wait_until(lock, due);
        } else {
            Waiting waiting = std::move(*next);
            m_waiting.erase(next);
            lock.unlock();
            attempt(std::move(waiting));
            lock.lock();
        }
    }
    m_finished = true;
    m_changed.notify_all();
}

std::deque<MailQueue::Waiting>::iterator MailQueue::nextDue()
{
    return std::ranges::min_element(m_waiting, {}, &Waiting::due);
}

void MailQueue::attempt(Waiting waiting)
{
    try {
        m_delivery->deliver(waiting.mail, m_giveUp);
        spdlog::info("event=mailDelivered attempts={}", waiting.failures + 1);
    } catch (const DeliveryError &error) {
        tryAgainLater(std::move(waiting), error);
    } catch (const std::exception &error) {
        tryAgainLater(std::move(waiting), {DeliveryError::Kind::Transient, error.what()});
    }
}

void MailQueue::tryAgainLater(Waiting waiting, const DeliveryError &error)
{
    const std::lock_guard lock{m_lock};
    const bool again = error.kind() == DeliveryError::Kind::Transient &&
                       waiting.failures < m_options.pauses.size() && !m_stopping;
    spdlog::warn("event=mailFailed attempts={} again={} what=\"{}\"", waiting.failures + 1,
                 again ? "yes" : "no", error.what());
    if (!again)
        return;
    waiting.due = std::chrono::steady_clock::now() + m_options.pauses.at(waiting.failures);
    ++waiting.failures;
    m_waiting.push_back(std::move(waiting));
}

} // namespace clockwell::server
