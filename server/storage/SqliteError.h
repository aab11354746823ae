#pragma once

#include "server/storage/DatabaseError.h"

namespace clockwell::server {

/// What a result code of SQLite means, plain or extended, in SQLite's own words.
DatabaseError sqliteError(int code);

} // namespace clockwell::server
