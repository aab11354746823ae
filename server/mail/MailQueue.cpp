#include "server/mail/MailQueue.h"

#include "server/http/AccessLog.h"

#include <spdlog/spdlog.h>

#include <algorithm>
#include <functional>

namespace clockwell::server {

namespace {

constexpr std::chrono::seconds pauseBetweenCleanings{1};
constexpr std::size_t longestReason = 400;

std::optional<DeliveryError> failureOf(const std::function<void()> &action)
{
    try {
        action();
        return {};
    } catch (const DeliveryError &error) {
        return error;
    } catch (const std::exception &error) {
        return DeliveryError{DeliveryError::Kind::Transient, error.what()};
    }
}

} // namespace

MailQueue::MailQueue(std::unique_ptr<MailDelivery> delivery, MailQueueOptions options)
    : m_delivery(std::move(delivery)),
      m_options(std::move(options)),
      m_pace(m_options.deliveries),
      m_running(m_options.deliveries)
{
    for (std::size_t i = 0; i < m_options.deliveries; ++i)
        m_threads.emplace_back([this] { run(); });
}

MailQueue::~MailQueue()
{
    {
        std::unique_lock lock{m_lock};
        m_stopping = true;
        m_changed.notify_all();
        m_changed.wait_for(lock, m_options.flushLimit, [this] { return m_running == 0; });
        m_giveUp = true;
        m_changed.notify_all();
    }
    for (std::thread &thread : m_threads)
        thread.join();
    const std::size_t lost = m_lostAtTheEnd + waiting();
    if (lost > 0)
        spdlog::error("event=mailDropped reason=stopping messages={}", lost);
}

void MailQueue::post(Mail mail) noexcept
{
    try {
        const std::lock_guard lock{m_lock};
        Line &line = m_lines.at(static_cast<std::size_t>(mail.precedence));
        if (line.size() < 2 * m_options.capacity) { // some were promised while others were still to come
            const Time now = std::chrono::steady_clock::now();
            const bool isPromised = excess(mail.precedence, now) == MailPace::Duration::zero();
            line.push_back({std::move(mail), now, now, isPromised});
            m_changed.notify_all();
            return;
        }
        spdlog::error("event=mailDropped reason=queueFull messages=1");
    } catch (const std::exception &) { // out of memory: the message is lost like one that a mail server loses
    }
}

std::chrono::seconds MailQueue::excess(Precedence precedence) const
{
    const std::lock_guard lock{m_lock};
    return std::chrono::ceil<std::chrono::seconds>(excess(precedence, std::chrono::steady_clock::now()));
}

MailQueue::Backlog MailQueue::backlog() const
{
    const std::lock_guard lock{m_lock};
    const Time now = std::chrono::steady_clock::now();
    Time oldest = now;
    for (const Line &line : m_lines)
        for (const Waiting &waiting : line)
            oldest = std::min(oldest, waiting.posted);
    return {waiting(), std::chrono::floor<std::chrono::seconds>(now - oldest)};
}

/// Goes through everything that waits in the order in which it will be delivered. Two kinds of messages count
/// for the time that they take only: one that was refused before may be late by its recipient's fault, and
/// one for which there was no room would keep owners from their codes if strangers caused many.
MailPace::Duration MailQueue::excess(Precedence precedence, Time now) const
{
    const auto step = m_pace.step(now);
    Time end = now + m_pace.outage(now) + step * static_cast<long>(m_pace.underWay());
    auto excess = step * 0;
    const auto deliver = [&](Time latest) {
        end += step;
        excess = std::max(excess, end - latest);
    };
    for (const Precedence line : {Precedence::Own, Precedence::Stranger}) {
        for (const Waiting &waiting : lineOf(line))
            deliver(waiting.isPromised && waiting.failures == 0 ? waiting.posted + m_options.life
                                                                : Time::max());
        if (line == precedence)
            deliver(now + (line == Precedence::Own ? m_options.longestWait : m_options.longestWait / 2));
    }
    const std::size_t length = lineOf(precedence).size();
    if (length >= m_options.capacity)
        excess = std::max(excess, step * static_cast<long>(length - m_options.capacity + 1));
    return excess;
}

void MailQueue::run()
{
    std::unique_lock lock{m_lock};
    while (!m_giveUp && !(m_stopping && waiting() == 0))
        work(lock);
    --m_running;
    m_changed.notify_all();
}

/// One step of a thread: a delivery, an attempt to find the way open again, or waiting for either.
void MailQueue::work(std::unique_lock<std::mutex> &lock)
{
    const Time now = std::chrono::steady_clock::now();
    dropExpired(now);
    if (m_pace.isClosed() && !m_stopping) {
        if (m_isTrying)
            m_changed.wait(lock);
        else if (now < m_nextTry)
            m_changed.wait_until(lock, Time{m_nextTry}); // a copy: another thread may set it meanwhile
        else
            tryTheWay(lock);
    } else if (auto next = takeDue(now)) {
        attempt(lock, std::move(*next));
    } else {
        m_changed.wait_until(lock, nextDue());
    }
}

/// By a message when one is due, so that it need not wait any longer.
void MailQueue::tryTheWay(std::unique_lock<std::mutex> &lock)
{
    m_isTrying = true;
    if (auto next = takeDue(std::chrono::steady_clock::now())) {
        attempt(lock, std::move(*next));
    } else {
        lock.unlock();
        const auto failure = failureOf([this] { m_delivery->check(m_giveUp); });
        lock.lock();
        if (failure)
            spdlog::warn("event=mailServerDown what={}", logValue(failure->what(), longestReason));
        setWay(!failure);
    }
    m_isTrying = false;
    m_changed.notify_all();
}

std::optional<MailQueue::Waiting> MailQueue::takeDue(Time now)
{
    for (Line &line : m_lines) {
        const auto next = std::ranges::find_if(
            line, [&](const Waiting &waiting) { return m_stopping || waiting.due <= now; });
        if (next == line.end())
            continue;
        Waiting waiting = std::move(*next);
        line.erase(next);
        return waiting;
    }
    return {};
}

MailQueue::Time MailQueue::nextDue() const
{
    Time next = std::chrono::steady_clock::now() + std::chrono::hours{1}; // of a wait that anything ends
    for (const Line &line : m_lines)
        for (const Waiting &waiting : line)
            next = std::min(next, waiting.due);
    return next;
}

void MailQueue::attempt(std::unique_lock<std::mutex> &lock, Waiting waiting)
{
    const Time begun = std::chrono::steady_clock::now();
    m_pace.begin(begun);
    lock.unlock();
    const auto failure = failureOf([&] { m_delivery->deliver(waiting.mail, m_giveUp); });
    lock.lock();
    const bool isOpen = !failure || failure->kind() != DeliveryError::Kind::Down;
    if (isOpen)
        m_pace.end(begun, std::chrono::steady_clock::now());
    else
        m_pace.abandon(begun);
    setWay(isOpen);
    if (failure)
        tryAgainLater(std::move(waiting), *failure);
    else
        spdlog::info("event=mailDelivered attempts={}", waiting.failures + 1);
}

void MailQueue::tryAgainLater(Waiting waiting, const DeliveryError &error)
{
    const bool isDown = error.kind() == DeliveryError::Kind::Down;
    const bool isRefused = error.kind() == DeliveryError::Kind::Permanent ||
                           (!isDown && waiting.failures >= m_options.pauses.size());
    const bool again = !isRefused && !m_stopping;
    spdlog::warn("event=mailFailed attempts={} again={} what={}", waiting.failures + 1, again ? "yes" : "no",
                 logValue(error.what(), longestReason));
    Line &line = m_lines.at(static_cast<std::size_t>(waiting.mail.precedence));
    if (!again) {
        m_lostAtTheEnd += m_stopping ? 1 : 0;
    } else if (isDown) {
        line.push_front(std::move(waiting));
    } else {
        waiting.due = std::chrono::steady_clock::now() + m_options.pauses.at(waiting.failures);
        ++waiting.failures;
        line.push_back(std::move(waiting));
    }
}

void MailQueue::setWay(bool isOpen)
{
    const Time now = std::chrono::steady_clock::now();
    if (isOpen) {
        m_pace.setOpen();
        m_pause = std::chrono::milliseconds{0};
    } else {
        m_pace.setClosed(now);
        m_pause = std::clamp(m_pause * 2, m_options.firstPause, m_options.longestPause);
        m_nextTry = now + m_pause;
        m_giveUp = m_giveUp || m_stopping; // nobody waits then for it to open again
    }
    m_changed.notify_all();
}

void MailQueue::dropExpired(Time now)
{
    if (now < m_nextCleaning)
        return;
    m_nextCleaning = now + pauseBetweenCleanings;
    std::size_t count = 0;
    for (Line &line : m_lines)
        count += std::erase_if(
            line, [&](const Waiting &waiting) { return waiting.posted + m_options.life <= now; });
    if (count > 0)
        spdlog::error("event=mailDropped reason=tooLate messages={}", count);
}

} // namespace clockwell::server
