#include "server/storage/Turns.h"

namespace clockwell::server {

bool Turns::take(const Wait &wait)
{
    std::unique_lock lock{m_lock};
    if (m_free > 0) { // then nobody waits
        --m_free;
        return true;
    }
    Waiter self;
    Queue &queue = wait.first ? m_first : m_others;
    const auto place = queue.insert(queue.end(), &self);
    if (self.called.wait_until(lock, wait.until, [&] { return self.hasTurn; }))
        return true; // give() took it out of the queue
    queue.erase(place);
    return false;
}

void Turns::give() noexcept
{
    const std::lock_guard lock{m_lock};
    Queue &queue = m_first.empty() ? m_others : m_first;
    if (queue.empty()) {
        ++m_free;
        return;
    }
    Waiter &next = *queue.front();
    queue.pop_front();
    next.hasTurn = true;
    next.called.notify_one(); // under the lock: the waiter goes away as soon as it is let on
}

std::size_t Turns::waiting()
{
    const std::lock_guard lock{m_lock};
    return m_first.size() + m_others.size();
}

} // namespace clockwell::server
