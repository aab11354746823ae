#pragma once

#include "net/Errors.h"

namespace clockwell {

/// There is no session (any more) that could be renewed.
inline APIError sessionGone()
{
    return APIError(QStringLiteral("Session expired."), QStringLiteral("NO_REFRESH"), 401);
}

/// The server refused to renew the session.
inline APIError sessionRefused()
{
    return APIError(QStringLiteral("Session expired. Please sign in again."),
                    QStringLiteral("REFRESH_FAILED"), 401);
}

} // namespace clockwell
