#include "net/SessionGuard.h"

namespace clockwell {

void SessionGuard::advance() noexcept
{
    ++m_epoch;
    if (m_writing.try_lock_for(maxWait))
        m_writing.unlock();
}

bool SessionGuard::write(Epoch epoch, const std::function<void()> &change, const std::function<void()> &undo)
{
    const std::scoped_lock lock(m_writing);
    if (current() != epoch)
        return false;
    change();
    if (current() == epoch)
        return true;
    if (undo)
        undo();
    return false;
}

} // namespace clockwell
