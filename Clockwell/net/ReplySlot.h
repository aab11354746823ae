#pragma once

#include <QCoro/QCoroTask>

#include <exception>
#include <functional>
#include <memory>
#include <mutex>

namespace clockwell {

/// The meeting point of a coroutine that waits on one thread with the work done for it on another.
///
/// Made and awaited on the waiting thread, finished once from any thread. The coroutine always resumes on its
/// own thread, from that thread's event loop; when the thread ends first, it resumes while the thread winds
/// down, with a TransportError (cancelled), so that nothing it holds leaks.
class ReplySlot : public std::enable_shared_from_this<ReplySlot>
{
    struct Key
    {};

public:
    class Courier;

    explicit ReplySlot(Key) {}
    static std::shared_ptr<ReplySlot> make();

    /// Any thread; only the first call counts.
    void finish(std::exception_ptr error = {}) noexcept;
    bool isFinished() const noexcept;
    /// Resumes now what is due on the calling thread, for when its event loop will not run again.
    static void deliverHere();

    /// What the waiting coroutine awaits; rethrows the error given to finish().
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
    std::shared_ptr<Courier> m_home;
};

} // namespace clockwell
