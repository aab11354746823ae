#pragma once

#include "server/storage/DatabaseError.h"

#include <string>

namespace clockwell::server {

/// What a SQLSTATE of PostgreSQL means (its manual's "PostgreSQL Error Codes"), in words without the values
/// of the statement: those would get into the log.
DatabaseError postgresError(const std::string &sqlstate);

/// The connection broke. `sqlstate`: what PostgreSQL said before; empty if it said nothing.
DatabaseError lostConnection(const std::string &sqlstate);

} // namespace clockwell::server
