#include "net/SessionEvents.h"

namespace clockwell {

void SessionEvents::setExpiredAt(QDateTime moment)
{
    m_expiredAt = std::move(moment);
    Q_EMIT expiredAtChanged();
}

} // namespace clockwell
