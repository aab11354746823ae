#pragma once

#include <string>

namespace clockwell::server {

/// Opens the database once more and reads from each of its tables: nothing here comes from what another
/// connection remembers. Throws DatabaseError when it is not there, not ours, damaged at the beginning of a
/// table, or blocked for longer than a second. Damage further inside is for `admin backup` to find.
void requireReadableDatabase(const std::string &file);

} // namespace clockwell::server
