#pragma once

#include "server/admin/Backup.h"
#include "server/storage/Instant.h"
#include "server/storage/NewFile.h"

#include <optional>
#include <string>

namespace clockwell::server {

/// Putting a backup in the place of a database, in two steps: everything is checked and prepared in a file of
/// its own, and only then the database changes, in one transaction.
class Restoration
{
public:
    /// Copies the backup beside the database, checks it, brings its schema up to date, and ends all sessions
    /// and codes in it: some may have been ended since. Throws AdminError when the backup cannot be used.
    /// `as`: the administrator who acts, for the audit, or nothing.
    Restoration(std::string database, std::string backup, const std::optional<std::string> &as);

    const DatabaseContents &contents() const { return m_contents; }
    /// There is a database that will be replaced.
    bool replaces() const { return m_replaces; }

    /// Returns where the database is kept as it was before; nothing when there was none. Throws AdminError
    /// when any other process has the database open. A failure, or the end of the process, changes nothing.
    std::optional<std::string> finish(Instant now);

private:
    void prepare(const std::optional<std::string> &as);
    std::string keepAndReplace(Instant now);

    std::string m_database; // where a symbolic link leads to
    std::string m_backup;
    bool m_replaces;
    NewFile m_prepared;
    DatabaseContents m_contents;
};

} // namespace clockwell::server
