#pragma once

#include "server/admin/TableLayout.h"
#include "server/storage/Connection.h"
#include "server/storage/PostgresReader.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace clockwell::server {

/// An empty database of PostgreSQL, and the one transaction that fills it: before commit() nobody sees
/// anything of it, and without that, also after the end of the process, nothing has changed.
class MoveTarget
{
public:
    /// Makes the schema in it. Throws AdminError when it is not empty or newer than this program, and
    /// std::runtime_error when it cannot be used.
    explicit MoveTarget(const std::string &url);
    ~MoveTarget();
    MoveTarget(const MoveTarget &) = delete;
    MoveTarget &operator=(const MoveTarget &) = delete;

    Connection &connection() { return *m_connection; }
    /// Its columns here, in the order of the layout. Throws AdminError when the table is not the same one.
    std::vector<PostgresColumn> columnsOf(const TableLayout &table);
    void forEachRow(const TableLayout &table, const std::function<void(const StoredRow &)> &onRow);

private:
    void begin();
    void requireEmpty(const std::vector<std::string> &tables);
    void makeSchema();
    [[noreturn]] void refuse(const std::string &reason) const;

    std::string m_label;
    std::unique_ptr<Connection> m_connection;
};

} // namespace clockwell::server
