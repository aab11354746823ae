#include "net/APIClient.h"

#include "net/APIClientWorker.h"

#include <QEventLoop>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace clockwell {

/// The client's thread and the queue of work for it. The thread is no QThread: QThread::wait() returns while
/// the system still ends the thread, and a process that ends right then frees what libcrypto keeps of the
/// thread twice.
class APIClient::Core final
{
public:
    Core(Options options, TokenStore &tokens, SessionEvents &events)
        : m_options(std::move(options)), m_tokens(tokens), m_events(events)
    {
        m_inbox->moveToThread(nullptr); // until the thread takes it
    }
    Core(const Core &) = delete;
    Core &operator=(const Core &) = delete;

    ~Core()
    {
        {
            const std::scoped_lock lock(m_mutex);
            m_closing = true;
            if (m_thread.joinable())
                QMetaObject::invokeMethod(
                    m_inbox.get(), [this] { m_loop->quit(); }, Qt::QueuedConnection);
        }
        if (m_thread.joinable())
            m_thread.join();
        // Calls still queued when the thread ended are finished by nothing else.
        for (const auto &pending : m_pending)
            if (const std::shared_ptr<ReplySlot> slot = pending.lock())
                slot->finish(std::make_exception_ptr(TransportError(TransportError::Kind::Cancelled)));
        ReplySlot::deliverHere();
    }

    SessionGuard &guard() { return *m_guard; }

    /// Queues `work`, which finishes the slot, for the client's thread. Callable from any thread.
    std::shared_ptr<ReplySlot> post(std::function<void(Worker &, std::shared_ptr<ReplySlot>)> work)
    {
        std::shared_ptr<ReplySlot> slot = ReplySlot::make();
        const std::scoped_lock lock(m_mutex);
        if (m_closing) {
            slot->finish(std::make_exception_ptr(TransportError(TransportError::Kind::Cancelled)));
            return slot;
        }
        std::erase_if(m_pending, [](const auto &pending) { return pending.expired(); });
        m_pending.push_back(slot);
        if (!m_thread.joinable())
            m_thread = std::thread([this] { run(); });
        QMetaObject::invokeMethod(
            m_inbox.get(),
            [this, slot, work = std::move(work)] {
                if (!m_closing)
                    work(*m_worker, slot);
            },
            Qt::QueuedConnection);
        return slot;
    }

private:
    void run()
    {
        QEventLoop loop;
        m_loop = &loop;
        Worker worker(m_options, m_tokens, m_events, m_guard);
        m_worker = &worker;
        {
            // Qt does not expect anybody to post while an object that has no thread gets one ...
            const std::scoped_lock lock(m_mutex);
            m_inbox->moveToThread(QThread::currentThread());
        }
        loop.exec();
        {
            // ... or while the event loop of its thread goes: whoever posted the end may not be back yet.
            const std::scoped_lock lock(m_mutex);
        }
        worker.close();
        ReplySlot::deliverHere();
    }

    const Options m_options;
    TokenStore &m_tokens;
    SessionEvents &m_events;
    const std::shared_ptr<SessionGuard> m_guard = std::make_shared<SessionGuard>();
    const std::unique_ptr<QObject> m_inbox = std::make_unique<QObject>(); // lives on the client's thread
    QEventLoop *m_loop = nullptr;                                         // this and the next only used there
    Worker *m_worker = nullptr;

    std::mutex m_mutex; // of changes of all below
    std::atomic<bool> m_closing = false;
    std::thread m_thread;
    std::vector<std::weak_ptr<ReplySlot>> m_pending;
};

APIClient::APIClient(Options options, TokenStore &tokens, SessionEvents &events)
{
    if (!options.baseURL.isValid() || options.baseURL.host().isEmpty())
        qFatal("the base URL of the server is not a URL");
    m_core = std::make_unique<Core>(std::move(options), tokens, events);
}

APIClient::~APIClient() = default;

std::shared_ptr<ReplySlot> APIClient::send(Call call)
{
    return m_core->post([call = std::move(call)](Worker &worker, std::shared_ptr<ReplySlot> slot) {
        worker.serve(call, std::move(slot));
    });
}

std::shared_ptr<ReplySlot> APIClient::run(std::function<void()> work)
{
    return m_core->post([work = std::move(work)](Worker &, const std::shared_ptr<ReplySlot> &slot) {
        try {
            work();
            slot->finish();
        } catch (...) {
            slot->finish(std::current_exception());
        }
    });
}

void APIClient::sessionChanged() noexcept
{
    m_core->guard().advance();
}

} // namespace clockwell
