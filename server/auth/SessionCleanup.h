#pragma once

#include "server/storage/Connection.h"
#include "server/storage/Instant.h"

namespace clockwell::server {

/// Whether there is anything to remove. To be asked in a transaction that only reads: of those that write,
/// two that look for what is over cannot be recorded at once on PostgreSQL when others add sessions, although
/// there is mostly nothing.
bool hasEndedSessions(Connection &connection, Instant now);

/// Removes tokens that have expired and sessions that are over, as part of the caller's transaction: more
/// than a sign-in or a refresh adds, but only a few, so that it never takes long. What is left stays for the
/// next one; it has no effect any more.
void removeSomeEndedSessions(Connection &connection, Instant now);

} // namespace clockwell::server
