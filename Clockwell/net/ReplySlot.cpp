#include "net/ReplySlot.h"

#include "net/Errors.h"

#include <QCoreApplication>
#include <QEvent>
#include <QThread>

#include <algorithm>
#include <set>

namespace clockwell {

namespace {

const QEvent::Type resumeType = static_cast<QEvent::Type>(QEvent::registerEventType());

class ResumeEvent final : public QEvent
{
public:
    explicit ResumeEvent(std::shared_ptr<ReplySlot> theSlot) : QEvent(resumeType), slot(std::move(theSlot)) {}
    std::shared_ptr<ReplySlot> slot;
};

} // namespace

/// Resumes the coroutines of one thread when their slots are finished. Other threads access only its
/// receiver, and only under the mutex, because the thread may end at the same moment.
class ReplySlot::Dispatcher
{
public:
    Dispatcher() : m_receiver(std::make_unique<Receiver>())
    {
        // Thread-local objects are destroyed after the thread's event loop has ended; waiting coroutines
        // resume earlier, on finished(), when the thread's event dispatcher still exists.
        QObject::connect(
            QThread::currentThread(), &QThread::finished, m_receiver.get(), [this] { cancelAll(); },
            Qt::DirectConnection);
    }
    Dispatcher(const Dispatcher &) = delete;
    Dispatcher &operator=(const Dispatcher &) = delete;
    ~Dispatcher() = default;

    static const std::shared_ptr<Dispatcher> &forCurrentThread()
    {
        thread_local const Owner owner;
        return owner.dispatcher;
    }

    void add(std::shared_ptr<ReplySlot> slot) { m_waiting.insert(std::move(slot)); }
    void remove(const std::shared_ptr<ReplySlot> &slot) { m_waiting.erase(slot); }

    void postResume(std::shared_ptr<ReplySlot> slot) noexcept
    {
        const std::scoped_lock lock(m_mutex);
        if (m_receiver)
            QCoreApplication::postEvent(m_receiver.get(), new ResumeEvent(std::move(slot)));
    }

    /// A resumed coroutine may await another slot that is already finished, hence several rounds. Their
    /// number is limited, because a coroutine might do so forever.
    void resumeFinished()
    {
        constexpr int rounds = 100;
        for (int round = 0; round < rounds && hasFinished(); ++round)
            QCoreApplication::sendPostedEvents(m_receiver.get(), resumeType);
    }

private:
    class Receiver final : public QObject
    {
        bool event(QEvent *event) override
        {
            if (event->type() != resumeType)
                return QObject::event(event);
            static_cast<ResumeEvent *>(event)->slot->resume();
            return true;
        }
    };

    struct Owner
    {
        std::shared_ptr<Dispatcher> dispatcher = std::make_shared<Dispatcher>();
        ~Owner() { dispatcher->close(); }
    };

    bool hasFinished() const
    {
        return std::any_of(
            m_waiting.begin(), m_waiting.end(), [](const auto &slot) { return slot->isFinished(); });
    }

    void cancelAll()
    {
        while (!m_waiting.empty()) {
            const std::shared_ptr<ReplySlot> slot = *m_waiting.begin();
            slot->finish(std::make_exception_ptr(TransportError(TransportError::Kind::Cancelled)));
            slot->resume();
        }
    }

    void close()
    {
        cancelAll();
        const std::scoped_lock lock(m_mutex);
        m_receiver.reset();
    }

    std::mutex m_mutex;
    std::unique_ptr<Receiver> m_receiver;
    std::set<std::shared_ptr<ReplySlot>> m_waiting; // accessed only by the dispatcher's own thread
};

std::shared_ptr<ReplySlot> ReplySlot::make()
{
    auto slot = std::make_shared<ReplySlot>(Key{});
    slot->m_dispatcher = Dispatcher::forCurrentThread();
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
        m_dispatcher->postResume(shared_from_this());
}

bool ReplySlot::isFinished() const noexcept
{
    const std::scoped_lock lock(m_mutex);
    return m_finished;
}

void ReplySlot::deliverHere()
{
    Dispatcher::forCurrentThread()->resumeFinished();
}

void ReplySlot::suspend(std::coroutine_handle<> waiter)
{
    const std::scoped_lock lock(m_mutex);
    m_waiter = waiter;
    m_dispatcher->add(shared_from_this());
    // A slot that is already finished resumes through the event loop, too, after everything posted to this
    // thread before.
    if (m_finished)
        m_dispatcher->postResume(shared_from_this());
}

void ReplySlot::rethrow() const
{
    if (m_error)
        std::rethrow_exception(m_error);
}

void ReplySlot::resume()
{
    const std::shared_ptr<ReplySlot> alive = shared_from_this();
    m_dispatcher->remove(alive);
    if (const std::coroutine_handle<> waiter = std::exchange(m_waiter, {}))
        waiter.resume();
}

} // namespace clockwell
