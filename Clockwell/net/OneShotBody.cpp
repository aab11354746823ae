#include "net/OneShotBody.h"

#include <algorithm>

namespace clockwell {

qint64 OneShotBody::readData(char *data, qint64 room)
{
    const qint64 count = std::min(room, m_bytes.size() - m_at);
    if (count == 0 && room > 0)
        return -1;
    std::copy_n(m_bytes.data() + m_at, count, data);
    m_at += count;
    return count;
}

} // namespace clockwell
