#pragma once

#include "server/storage/Connection.h"

#include <string>
#include <vector>

namespace clockwell::server {

/// A table as the catalogue of a SQLite database describes it.
struct TableLayout
{
    std::string name;
    std::vector<std::string> columns;
    std::vector<std::string> key; ///< the columns of the primary key, or all if there is none
};

/// All tables of a database, each behind those that its rows refer to. Throws DatabaseError, and
/// std::runtime_error when tables refer to each other in a circle.
std::vector<TableLayout> tableLayouts(Connection &sqlite);

/// The name as both databases read it, whatever stands in it.
std::string quotedName(const std::string &name);

/// "TABLE (COLUMN, COLUMN)"
std::string tableWithColumns(const TableLayout &table);

// The queries for all rows with the table's columns. Texts are sorted by code point in both databases, so the
// order is the same.

/// Sorts the rows, with room on the disk. Along the index SQLite would read a page for each row.
std::string sortedSqliteRows(const TableLayout &table);
/// Goes along the index of the primary key.
std::string sortedPostgresRows(const TableLayout &table);

} // namespace clockwell::server
