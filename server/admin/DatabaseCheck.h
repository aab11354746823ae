#pragma once

#include "server/admin/AdminJson.h"
#include "server/admin/SqliteFile.h"

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

/// Adds "schema", "employees" and "attendanceDays".
void addContents(Json &object, const DatabaseContents &contents);

/// "12 employees, 240 days of attendance"
std::string describe(const DatabaseContents &contents);

} // namespace clockwell::server
