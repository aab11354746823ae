#include "net/ReplySlot.h"

#include "net/Errors.h"

#include <QCoreApplication>
#include <QEvent>
#include <QThread>

#include <algorithm>
#include <set>

namespace clockwell {

namespace {

const QEvent::Type wakeType = static_cast<QEvent::Type>(QEvent::registerEventType());

class WakeEvent final : public QEvent
{
public:
    explicit WakeEvent(std::shared_ptr<ReplySlot> theSlot) : QEvent(wakeType), slot(std::move(theSlot)) {}
    std::shared_ptr<ReplySlot> slot;
};

} // namespace

/// Carries finished slots to one thread. Its receiver is the only part that other threads reach for, and only
/// under the mutex, because the thread may end at the same moment.
class ReplySlot::Courier
{
public:
    Courier() : m_receiver(std::make_unique<Receiver>())
    {
        // Thread-local objects die after the thread's event loop; waiters are better off while it can still
        // do something.
        QObject::connect(
            QThread::currentThread(), &QThread::finished, m_receiver.get(), [this] { dropAll(); },
            Qt::DirectConnection);
    }
    Courier(const Courier &) = delete;
    Courier &operator=(const Courier &) = delete;
    ~Courier() = default;

    static const std::shared_ptr<Courier> &ofThisThread()
    {
        thread_local const Owner owner;
        return owner.courier;
    }

    void expect(std::shared_ptr<ReplySlot> slot) { m_waiting.insert(std::move(slot)); }
    void forget(const std::shared_ptr<ReplySlot> &slot) { m_waiting.erase(slot); }

    void wake(std::shared_ptr<ReplySlot> slot) noexcept
    {
        const std::scoped_lock lock(m_mutex);
        if (m_receiver)
            QCoreApplication::postEvent(m_receiver.get(), new WakeEvent(std::move(slot)));
    }

    /// What resumes may wait again for something that is finished already; who does so for ever is left
    /// behind.
    void deliverNow()
    {
        constexpr int rounds = 100;
        for (int round = 0; round < rounds && hasFinished(); ++round)
            QCoreApplication::sendPostedEvents(m_receiver.get(), wakeType);
    }

private:
    class Receiver final : public QObject
    {
        bool event(QEvent *event) override
        {
            if (event->type() != wakeType)
                return QObject::event(event);
            static_cast<WakeEvent *>(event)->slot->resume();
            return true;
        }
    };

    struct Owner
    {
        std::shared_ptr<Courier> courier = std::make_shared<Courier>();
        ~Owner() { courier->close(); }
    };

    bool hasFinished() const
    {
        return std::any_of(m_waiting.begin(), m_waiting.end(),
                           [](const auto &slot) { return slot->isFinished(); });
    }

    void dropAll()
    {
        while (!m_waiting.empty()) {
            const std::shared_ptr<ReplySlot> slot = *m_waiting.begin();
            slot->finish(std::make_exception_ptr(TransportError(TransportError::Kind::Cancelled)));
            slot->resume();
        }
    }

    void close()
    {
        dropAll();
        const std::scoped_lock lock(m_mutex);
        m_receiver.reset();
    }

    std::mutex m_mutex;
    std::unique_ptr<Receiver> m_receiver;
    std::set<std::shared_ptr<ReplySlot>> m_waiting; // touched by the own thread only
};

std::shared_ptr<ReplySlot> ReplySlot::make()
{
    auto slot = std::make_shared<ReplySlot>(Key{});
    slot->m_home = Courier::ofThisThread();
    return slot;
}

void ReplySlot::finish(std::exception_ptr error) noexcept
{
    const std::scoped_lock lock(m_mutex);
    if (m_finished)
        return;
    m_finished = true;
    m_error = std::move(error);
    if (m_waiter)
        m_home->wake(shared_from_this());
}

bool ReplySlot::isFinished() const noexcept
{
    const std::scoped_lock lock(m_mutex);
    return m_finished;
}

void ReplySlot::deliverHere()
{
    Courier::ofThisThread()->deliverNow();
}

void ReplySlot::suspend(std::coroutine_handle<> waiter)
{
    const std::scoped_lock lock(m_mutex);
    m_waiter = waiter;
    m_home->expect(shared_from_this());
    // Also what is finished by now comes through the event loop, behind whatever was posted to this thread
    // before it.
    if (m_finished)
        m_home->wake(shared_from_this());
}

void ReplySlot::rethrow() const
{
    if (m_error)
        std::rethrow_exception(m_error);
}

void ReplySlot::resume()
{
    const std::shared_ptr<ReplySlot> alive = shared_from_this();
    m_home->forget(alive);
    if (const std::coroutine_handle<> waiter = std::exchange(m_waiter, {}))
        waiter.resume();
}

} // namespace clockwell
