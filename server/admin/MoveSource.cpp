#include "server/admin/MoveSource.h"

#include "server/admin/AdminDatabase.h"
#include "server/admin/AdminError.h"
#include "server/admin/Audit.h"

#include <filesystem>

namespace clockwell::server {

MoveSource::MoveSource(const std::string &database, const std::optional<std::string> &as)
    : m_live(requireDatabase(database)),
      m_copyFile(std::filesystem::canonical(database).string(), NewFile::IfThere::Replace)
{
    const std::string name = "The database " + database;
    if (!m_live.holdAlone())
        throw refused(name +
                      " is in use by a server or another program. Stop it, then move again. Nothing was"
                      " moved.");
    m_contents = copyChecked(m_live, m_copyFile.unfinished(), name);
    bringUpToDate(m_copyFile.unfinished(), [&](Connection &connection) {
        const Audit allowed{connection, as};
        m_tables = tableLayouts(connection);
    });
    m_copy.emplace(m_copyFile.unfinished());
    m_copy->execute("PRAGMA cache_size = -65536"); // KiB: what is sorted at a time
}

void MoveSource::forEachRow(const TableLayout &table, const std::function<void(const StoredRow &)> &onRow)
{
    m_copy->forEachRow(sortedSqliteRows(table), onRow);
}

} // namespace clockwell::server
