#pragma once

#include "server/storage/Connection.h"

#include <string>

namespace clockwell::server {

/// Brings the schema to this program's version, one numbered step after the other; runs inside a transaction.
/// Throws DatabaseError of kind Newer when the database was written by a newer program.
void migrate(Connection &connection);

/// The schema version that this program works with.
int schemaVersion();

/// The schema version of the database; 0 before the first step.
long long storedSchemaVersion(Connection &connection);

/// What is told of a database of a newer version: "The database was written by a newer version ...".
std::string newerSchemaText(const std::string &name, long long version);

} // namespace clockwell::server
