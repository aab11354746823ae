#pragma once

#include "net/Errors.h"

namespace clockwell {

/// There is no session that could be renewed, or it has ended meanwhile.
inline APIError noRefreshError()
{
    return APIError(QStringLiteral("Session expired."), QStringLiteral("NO_REFRESH"), 401);
}

/// The server refused to renew the session.
inline APIError refreshFailedError()
{
    return APIError(QStringLiteral("Session expired. Please sign in again."),
                    QStringLiteral("REFRESH_FAILED"), 401);
}

} // namespace clockwell
