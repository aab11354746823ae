#pragma once

#include "server/admin/Backup.h"
#include "server/admin/TableLayout.h"
#include "server/storage/NewFile.h"
#include "server/storage/SqliteFile.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace clockwell::server {

/// A SQLite database on its way into another one: a checked copy with this program's schema. As long as this
/// lives nobody else can use the database, which is not changed.
class MoveSource
{
public:
    /// `as`: the administrator who acts, or nothing. Throws AdminError when anybody else has the database
    /// open, when it is damaged or newer than this program, and when `as` will not do; std::runtime_error and
    /// DatabaseError for other failures.
    MoveSource(const std::string &database, const std::optional<std::string> &as);

    const DatabaseContents &contents() const { return m_contents; }
    const std::vector<TableLayout> &tables() const { return m_tables; } ///< see tableLayouts()
    void forEachRow(const TableLayout &table, const std::function<void(const StoredRow &)> &onRow);

private:
    SqliteFile m_live;
    NewFile m_copyFile; // never put into a place
    DatabaseContents m_contents;
    std::optional<SqliteFile> m_copy;
    std::vector<TableLayout> m_tables;
};

} // namespace clockwell::server
