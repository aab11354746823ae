#pragma once

#include <QCoreApplication>
#include <QCoro/QCoroTask>
#include <QElapsedTimer>
#include <QEventLoop>

#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <thread>
#include <variant>

namespace clockwell::test {

/// How long a test waits for what must happen. It only ends a test that hangs, so it outlasts any pause of a
/// machine that does many things at once.
inline constexpr std::chrono::seconds patience{40};

/// Processes the calling thread's events until `condition` holds. Returns false after the limit.
inline bool spinUntil(const std::function<bool()> &condition, std::chrono::milliseconds limit = patience)
{
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.hasExpired(limit.count()))
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
}

template <class T>
struct Outcome
{
    using Stored = std::conditional_t<std::is_void_v<T>, std::monostate, T>;
    bool done = false;
    std::optional<Stored> value;
    std::exception_ptr error;
};

/// Runs a task and stores its result in `outcome`, which may outlive the test's scope.
template <class T>
QCoro::Task<> storeOutcome(QCoro::Task<T> task, std::shared_ptr<Outcome<T>> outcome)
{
    try {
        if constexpr (std::is_void_v<T>) {
            co_await task;
            outcome->value.emplace();
        } else {
            outcome->value.emplace(co_await task);
        }
    } catch (...) {
        outcome->error = std::current_exception();
    }
    outcome->done = true;
}

template <class T>
std::shared_ptr<Outcome<T>> observe(QCoro::Task<T> task)
{
    auto outcome = std::make_shared<Outcome<T>>();
    storeOutcome<T>(std::move(task), outcome);
    return outcome;
}

/// Waits for a task while processing events, and returns its value or rethrows its exception. Throws after
/// the limit. Replaces QCoro::waitFor, which never returns when the task throws.
template <class T>
T await(QCoro::Task<T> task, std::chrono::milliseconds limit = patience)
{
    const auto outcome = observe<T>(std::move(task));
    if (!spinUntil([&] { return outcome->done; }, limit))
        throw std::runtime_error("the task did not end in time");
    if (outcome->error)
        std::rethrow_exception(outcome->error);
    if constexpr (!std::is_void_v<T>)
        return std::move(*outcome->value);
}

/// Returns the exception of type E with which a task ends. Throws when it ends in any other way.
template <class E, class T>
E awaitError(QCoro::Task<T> task, std::chrono::milliseconds limit = patience)
{
    try {
        await<T>(std::move(task), limit);
    } catch (const E &error) {
        return error;
    }
    throw std::runtime_error("the task ended without an error");
}

} // namespace clockwell::test
