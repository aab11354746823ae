#include "net/APIClient.h"

#include "net/APIClientWorker.h"

#include <QThread>

#include <algorithm>
#include <vector>

namespace clockwell {

/// The client's thread and the queue of work for it.
class APIClient::Core final : private QThread
{
public:
    Core(Options options, TokenStore &tokens, SessionEvents &events)
        : m_options(std::move(options)), m_tokens(tokens), m_events(events)
    {
        setObjectName(QStringLiteral("APIClient"));
        m_inbox->moveToThread(this);
    }

    ~Core() override
    {
        {
            const std::scoped_lock lock(m_mutex);
            m_closing = true;
        }
        quit();
        wait();
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
        if (!isRunning())
            start();
        QMetaObject::invokeMethod(
            m_inbox.get(), [this, slot, work = std::move(work)] { work(*m_worker, slot); },
            Qt::QueuedConnection);
        return slot;
    }

private:
    void run() override
    {
        Worker worker(m_options, m_tokens, m_events, m_guard);
        m_worker = &worker;
        exec();
        worker.close();
        ReplySlot::deliverHere();
    }

    const Options m_options;
    TokenStore &m_tokens;
    SessionEvents &m_events;
    const std::shared_ptr<SessionGuard> m_guard = std::make_shared<SessionGuard>();
    const std::unique_ptr<QObject> m_inbox = std::make_unique<QObject>(); // lives on the client's thread
    Worker *m_worker = nullptr;                                           // only used there

    std::mutex m_mutex;
    bool m_closing = false;
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
