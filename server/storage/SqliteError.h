#pragma once

#include "server/storage/DatabaseError.h"

namespace clockwell::server {

/// What a result code of SQLite means, plain or extended, in SQLite's own words. `systemError`: the errno of
/// the operation behind it, 0 when there is none; of a failed write SQLite's code does not always tell that
/// the disk is full.
DatabaseError sqliteError(int code, int systemError = 0);

} // namespace clockwell::server
