#pragma once

#include <QCoro/QCoroTask>

#include <exception>
#include <optional>

namespace clockwell {

/// Suspends one coroutine until it is resumed with a value or an error. Single-threaded, for one use.
///
///     auto waiter = std::make_shared<OneShotWaiter<int>>();   // kept by the code that resumes it
///     const int value = co_await waiter->wait();
///
/// resume() and fail() run the coroutine up to its next suspension before they return. The caller must have
/// finished its own changes before the call, and may have been destroyed after it.
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

    /// Returns the object to co_await. It refers to the waiter and may be copied: some compilers copy awaited
    /// objects.
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
