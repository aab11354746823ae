#pragma once

#include "server/admin/Backup.h"

#include <optional>
#include <string>
#include <vector>

namespace clockwell::server {

/// What was moved, as it was found to be the same in both databases.
struct Moved
{
    struct Table
    {
        std::string name;
        long long rows = 0;
    };

    DatabaseContents contents;
    std::vector<Table> tables; ///< all, by name
};

/// Copies all rows of a SQLite database into an empty one of PostgreSQL, reads them back and compares them.
/// The file stays as it is. The new audit gets an entry; sessions go on. `as`: the administrator who acts, or
/// nothing.
///
/// Throws AdminError Refused, and std::runtime_error for failures of the databases. Then, as after the end of
/// the process, the database of PostgreSQL is as it was before, unless the text says that this is not known.
Moved moveToPostgres(const std::string &file, const std::string &url, const std::optional<std::string> &as);

} // namespace clockwell::server
