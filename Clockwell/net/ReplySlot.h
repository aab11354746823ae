#pragma once

#include <QCoro/QCoroTask>

#include <exception>
#include <functional>
#include <memory>
#include <mutex>

namespace clockwell {

/// Lets a coroutine on one thread await work done on another.
///
/// Created and awaited on the coroutine's thread, finished once from any thread. The coroutine always resumes
/// on its own thread, from that thread's event loop. If the thread ends first, the coroutine resumes during
/// the thread's shutdown with a TransportError (cancelled), so that it leaks nothing.
class ReplySlot : public std::enable_shared_from_this<ReplySlot>
{
    struct Key
    {};

public:
    class Dispatcher;

    explicit ReplySlot(Key) {}
    static std::shared_ptr<ReplySlot> make();

    /// Callable from any thread; only the first call has an effect.
    void finish(std::exception_ptr error = {}) noexcept;
    bool isFinished() const noexcept;
    /// Resumes at once all coroutines of the calling thread whose slots are finished. For a thread whose
    /// event loop will not run again.
    static void deliverHere();

    /// The awaitable; rethrows the error passed to finish().
    class Finished
    {
    public:
        explicit Finished(std::shared_ptr<ReplySlot> slot) : m_slot(std::move(slot)) {}
        bool await_ready() const noexcept { return false; }
        void await_suspend(std::coroutine_handle<> waiter) { m_slot->suspend(waiter); }
        void await_resume() const { m_slot->rethrow(); }

    private:
        std::shared_ptr<ReplySlot> m_slot;
    };
    Finished finished() { return Finished(shared_from_this()); }

private:
    void suspend(std::coroutine_handle<> waiter);
    void rethrow() const;
    void resume();

    mutable std::mutex m_mutex;
    bool m_finished = false;
    std::exception_ptr m_error;
    std::coroutine_handle<> m_waiter;
    std::shared_ptr<Dispatcher> m_dispatcher;
};

} // namespace clockwell
