#pragma once

#include <QCoro/QCoroTask>

#include <exception>
#include <optional>

namespace clockwell {

/// Suspends one coroutine until somebody has a value or an error for it. Single-threaded, used once.
///
///     auto waiter = std::make_shared<OneShotWaiter<int>>();   // kept by the one who will resume it
///     const int value = co_await waiter->wait();
///
/// resume() and fail() run the coroutine up to its next suspension before they return: everything that the
/// caller needs must be settled by then, and the caller itself may be gone afterwards.
template <class T>
class OneShotWaiter
{
public:
    OneShotWaiter() = default;
    OneShotWaiter(const OneShotWaiter &) = delete;
    OneShotWaiter &operator=(const OneShotWaiter &) = delete;

    void resume(T value)
    {
        m_value = std::move(value);
        wake();
    }
    void fail(std::exception_ptr error)
    {
        m_error = std::move(error);
        wake();
    }

    /// What to co_await. It refers to the waiter and may be copied, which some compilers do with an awaited
    /// object.
    auto wait() { return Awaiter{*this}; }

private:
    struct Awaiter
    {
        OneShotWaiter &waiter;
        bool await_ready() const noexcept { return waiter.m_value || waiter.m_error; }
        void await_suspend(std::coroutine_handle<> coroutine) noexcept { waiter.m_coroutine = coroutine; }
        T await_resume()
        {
            if (waiter.m_error)
                std::rethrow_exception(waiter.m_error);
            return std::move(*waiter.m_value);
        }
    };

    void wake()
    {
        if (const auto coroutine = std::exchange(m_coroutine, {}))
            coroutine.resume();
    }

    std::optional<T> m_value;
    std::exception_ptr m_error;
    std::coroutine_handle<> m_coroutine;
};

} // namespace clockwell
