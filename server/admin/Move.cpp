#include "server/admin/Move.h"

#include "server/admin/AdminError.h"
#include "server/admin/Audit.h"
#include "server/admin/Fingerprint.h"
#include "server/admin/MoveSource.h"
#include "server/admin/MoveTarget.h"
#include "server/admin/RowValidation.h"
#include "server/storage/DatabaseError.h"
#include "server/storage/PostgresUrl.h"
#include "server/storage/PostgresWriter.h"

#include <algorithm>
#include <chrono>

namespace clockwell::server {

namespace {

void copyTable(const TableLayout &table, MoveSource &source, MoveTarget &target)
{
    const auto columns = target.columnsOf(table);
    if (table.name == "schema_migrations")
        return; // has its rows from making the schema
    PostgresWriter writer{target.connection(), tableWithColumns(table)};
    source.forEachRow(table, [&](const StoredRow &row) {
        validateRow(row, table, columns);
        writer.add(row);
    });
    writer.finish();
}

void copyTables(MoveSource &source, MoveTarget &target)
{
    for (const TableLayout &table : source.tables()) {
        try {
            copyTable(table, source, target);
        } catch (const DatabaseError &error) {
            throw DatabaseError{error.kind(), "table " + table.name + ": " + error.what(), error.sqlstate()};
        }
    }
}

/// `Rows` is a MoveSource or a MoveTarget.
template <class Rows>
Fingerprint::Result fingerprintOf(Rows &rows, const TableLayout &table)
{
    Fingerprint fingerprint;
    rows.forEachRow(table, [&](const StoredRow &row) { fingerprint.add(row); });
    return fingerprint.result();
}

std::vector<Moved::Table> compareTables(MoveSource &source, MoveTarget &target)
{
    std::vector<Moved::Table> tables;
    std::string differences;
    for (const TableLayout &table : source.tables()) {
        const auto before = fingerprintOf(source, table);
        const auto after = fingerprintOf(target, table);
        tables.push_back({table.name, after.rows});
        if (after != before)
            differences += (differences.empty() ? "" : ", ") + table.name +
                           " (rows: " + std::to_string(before.rows) + " in the file, " +
                           std::to_string(after.rows) + " in PostgreSQL)";
    }
    if (!differences.empty())
        throw refused("These tables did not arrive as they are in the file: " + differences +
                      ". Nothing was moved.");
    std::ranges::sort(tables, {}, &Moved::Table::name);
    return tables;
}

Json auditValue(const std::string &file, const Moved &moved)
{
    Json value;
    value["from"] = file;
    addContents(value, moved.contents);
    return value;
}

Moved move(const std::string &file, const std::string &url, const std::optional<std::string> &as)
{
    MoveTarget target{url}; // first: whether it is empty is soon known
    MoveSource source{file, as};
    copyTables(source, target);
    Moved moved{source.contents(), compareTables(source, target)};
    Audit{target.connection(), as}.add(
        {"move", "database", "", std::nullopt, nullptr, auditValue(file, moved)});
    constexpr std::chrono::minutes longestCommit{1}; // PostgreSQL may wait for a standby for ever
    target.connection().commit(std::chrono::steady_clock::now() + longestCommit);
    return moved;
}

} // namespace

Moved moveToPostgres(const std::string &file, const std::string &url, const std::optional<std::string> &as)
{
    try {
        return move(file, url, as);
    } catch (const DatabaseError &error) {
        if (error.kind() == DatabaseError::Kind::Unconfirmed)
            throw std::runtime_error{"Whether everything was moved to " + databaseLabel(url) +
                                     " is not known; please look: " + error.what() + "."};
        throw std::runtime_error{std::string{"Nothing was moved: "} + error.what() + "."};
    }
}

} // namespace clockwell::server
