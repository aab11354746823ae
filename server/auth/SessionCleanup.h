#pragma once

#include "server/storage/Connection.h"
#include "server/storage/Instant.h"

namespace clockwell::server {

/// Removes tokens that have expired and sessions that are over, as part of the caller's transaction: more
/// than a sign-in or a refresh adds, but only a few, so that it never takes long. What is left stays for the
/// next one; it has no effect any more.
void removeSomeEndedSessions(Connection &connection, Instant now);

} // namespace clockwell::server
