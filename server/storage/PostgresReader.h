#pragma once

#include "server/storage/Connection.h"
#include "server/storage/StoredRow.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace clockwell::server {

/// A column of a table in PostgreSQL.
struct PostgresColumn
{
    enum class Kind { Integer, Real, Text };

    std::string name;
    Kind kind = Kind::Text;
    std::optional<long long> longest; ///< in characters, if there is a limit
};

/// The columns of a table in their order; none when there is no such table. Throws DatabaseError when one is
/// of a type that this program does not use.
std::vector<PostgresColumn> postgresColumns(Connection &connection, const std::string &table);

/// Calls `onRow` with each row of a query, whose columns are of these kinds, and never holds more than some
/// hundred of them. Part of a transaction. Throws DatabaseError.
void forEachPostgresRow(Connection &connection, const std::string &query,
                        const std::vector<PostgresColumn> &columns,
                        const std::function<void(const StoredRow &)> &onRow);

} // namespace clockwell::server
