#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <list>
#include <memory>
#include <mutex>

namespace clockwell::server {

/// How a request waits for its turn.
struct Wait
{
    using Clock = std::chrono::steady_clock;

    Clock::time_point until; ///< it gives up then
    bool first = false;      ///< before all that wait without this, however long they have
};

/// Lets a fixed number of threads on at a time. Those that wait are let on in the order of their coming,
/// after those that go first. While the next one wakes, a thread that comes then may go before it, which
/// keeps the processors at work; but not once the next one has waited for longer than `overtaking`. Safe on
/// several threads.
class Turns
{
public:
    static constexpr std::chrono::milliseconds overtaking{20};

    explicit Turns(std::size_t atOnce) : m_free(atOnce) {}

    /// Blocks until it is this thread's turn; false when the time was over before.
    bool take(const Wait &wait);
    /// Ends the turn of a thread that took one.
    void give() noexcept;

    /// How many threads wait now.
    std::size_t waiting();

private:
    struct Waiter
    {
        const Wait::Clock::time_point since = Wait::Clock::now();
        std::condition_variable called;
    };
    using Queue = std::list<std::shared_ptr<Waiter>>;

    std::shared_ptr<Waiter> next() const;

    std::mutex m_lock;  // guards all below
    std::size_t m_free; // whenever one is, who is next has been called or is about to look
    Queue m_first;
    Queue m_others;
};

/// A turn that ends with this object.
class Turn
{
public:
    explicit Turn(Turns &turns) : m_turns(turns) {} ///< for a turn that was taken
    ~Turn() { m_turns.give(); }
    Turn(const Turn &) = delete;
    Turn &operator=(const Turn &) = delete;

private:
    Turns &m_turns;
};

} // namespace clockwell::server
