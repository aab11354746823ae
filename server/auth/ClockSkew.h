#pragma once

#include "server/storage/Instant.h"

namespace clockwell::server {

/// Whether a recorded moment is from before the clock was set back, and not just of another server whose
/// clock is a little fast.
inline bool isAhead(long long at, Instant now)
{
    return fromMillis(at) > now + std::chrono::minutes{1};
}

} // namespace clockwell::server
