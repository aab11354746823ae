#include "PeerWatch.h"

#include <poll.h>

namespace clockwell::server {

void PeerWatch::release()
{
    const std::lock_guard lock(m_lock);
    m_descriptor = -1;
}

bool PeerWatch::gone() const
{
    const std::lock_guard lock(m_lock);
    pollfd entry{m_descriptor, POLLRDHUP, 0};
    return m_descriptor < 0 || ::poll(&entry, 1, 0) > 0;
}

} // namespace clockwell::server
