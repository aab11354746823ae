#pragma once

#include "server/admin/TableLayout.h"
#include "server/storage/PostgresReader.h"
#include "server/storage/StoredRow.h"

#include <string>
#include <vector>

namespace clockwell::server {

/// Throws AdminError, with the table, the key of the row and the column, when a row of SQLite holds what a
/// column of PostgreSQL cannot: SQLite heeds neither the lengths nor all of the types that it was told.
void validateRow(const StoredRow &row, const TableLayout &table, const std::vector<PostgresColumn> &columns);

} // namespace clockwell::server
