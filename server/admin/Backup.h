#pragma once

#include "server/admin/AdminJson.h"
#include "server/storage/Connection.h"
#include "server/storage/SqliteFile.h"

#include <functional>
#include <string>

namespace clockwell::server {

/// What a database holds, to tell one from the other.
struct DatabaseContents
{
    long long schema = 0; ///< its version
    long long employees = 0;
    long long attendanceDays = 0;
};

/// Makes sure that a file is an undamaged database of this program, not of a newer version of it. Throws
/// AdminError Refused with a sentence that begins with `name`.
DatabaseContents requireSound(SqliteFile &file, const std::string &name);

/// Copies a database as it is at one moment into an empty file, which needs no companions to be read, and
/// checks the copy as requireSound() does.
DatabaseContents copyChecked(SqliteFile &database, const std::string &file, const std::string &name);

/// Brings an older schema up to date, and does more in the same transaction. Throws DatabaseError.
void bringUpToDate(const std::string &file, const std::function<void(Connection &)> &more);

/// Adds "schema", "employees" and "attendanceDays".
void addContents(Json &object, const DatabaseContents &contents);

/// "12 employees, 240 days of attendance"
std::string describe(const DatabaseContents &contents);

/// Throws AdminError Refused when something that SQLite would take for a part of a database stands beside
/// this name: a new file there would be spoilt by it.
void requireNoCompanions(const std::string &file);

/// Copies the database as it is at one moment into a new file, also while a server runs, and checks the copy:
/// that also finds damage which the server has not met yet. `replace`: the file may be there already. Throws
/// AdminError Refused, and std::runtime_error for failures of the system.
DatabaseContents backUp(const std::string &database, const std::string &file, bool replace);

} // namespace clockwell::server
