#include "server/storage/Turns.h"

namespace clockwell::server {

bool Turns::take(const Wait &wait)
{
    std::shared_ptr<Waiter> called;
    {
        std::unique_lock lock{m_lock};
        const auto waiter = next();
        if (m_free == 0 || (waiter && Wait::Clock::now() - waiter->since > overtaking)) {
            Queue &queue = wait.first ? m_first : m_others;
            const auto self = queue.insert(queue.end(), std::make_shared<Waiter>());
            const bool isFree =
                (*self)->called.wait_until(lock, wait.until, [&] { return m_free > 0 && next() == *self; });
            queue.erase(self);
            if (!isFree)
                return false;
        }
        if (--m_free > 0)
            called = next();
    }
    if (called)
        called->called.notify_one();
    return true;
}

void Turns::give() noexcept
{
    std::shared_ptr<Waiter> called;
    {
        const std::lock_guard lock{m_lock};
        ++m_free;
        called = next();
    }
    if (called)
        called->called.notify_one(); // without the lock, which is the first thing that it needs
}

std::size_t Turns::waiting()
{
    const std::lock_guard lock{m_lock};
    return m_first.size() + m_others.size();
}

/// Whose turn it is as soon as one is free; nobody's when nobody waits.
std::shared_ptr<Turns::Waiter> Turns::next() const
{
    const Queue &queue = m_first.empty() ? m_others : m_first;
    return queue.empty() ? nullptr : queue.front();
}

} // namespace clockwell::server
