#pragma once

#include "server/storage/Connection.h"

namespace clockwell::server {

/// Brings the schema to this program's version, one numbered step after the other; runs inside a transaction.
/// Throws DatabaseError of kind Newer when the database was written by a newer program.
void migrate(Connection &connection);

/// The schema version that this program works with.
int schemaVersion();

} // namespace clockwell::server
