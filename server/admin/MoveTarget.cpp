#include "server/admin/MoveTarget.h"

#include "server/admin/AdminError.h"
#include "server/storage/DatabaseError.h"
#include "server/storage/Migrations.h"
#include "server/storage/PostgresEngine.h"
#include "server/storage/PostgresUrl.h"

#include <algorithm>

namespace clockwell::server {

namespace {

constexpr std::chrono::seconds tableLockTimeout{5};
constexpr auto insufficientPrivilege = "42501";

} // namespace

MoveTarget::MoveTarget(const std::string &url) : m_label(databaseLabel(url))
{
    try {
        m_connection = connectPostgres(url, tableLockTimeout);
        begin();
    } catch (const DatabaseError &error) {
        throw std::runtime_error{"The database " + m_label + " cannot be used: " + error.what() +
                                 ". Nothing was moved."};
    }
}

MoveTarget::~MoveTarget()
{
    m_connection->rollBack(); // what was committed stays
}

void MoveTarget::begin()
{
    // In the ordinary isolation, so that what others have written before the locks is seen after them.
    m_connection->execute("BEGIN");
    // Nothing is said to it while the file is checked and read, which may take longer than a server's
    // transaction.
    m_connection->execute("SET LOCAL idle_in_transaction_session_timeout = 0");
    const auto tables =
        m_connection->column<std::string>(std::string{postgresTablesSql} + " AND table_type = 'BASE TABLE'");
    requireEmpty(tables); // at first without locks, which would hold up those who work with it
    for (const std::string &table : tables)
        m_connection->execute("LOCK TABLE " + quotedName(table));
    requireEmpty(tables);
    makeSchema();
}

void MoveTarget::requireEmpty(const std::vector<std::string> &tables)
{
    for (const std::string &table : tables)
        if (table != "schema_migrations" &&
            m_connection->value<long long>("SELECT CASE WHEN EXISTS (SELECT 1 FROM " + quotedName(table) +
                                           ") THEN 1 ELSE 0 END") != 0)
            refuse("is not empty: its table " + table + " holds rows");
}

void MoveTarget::makeSchema()
{
    try {
        migrate(*m_connection);
    } catch (const DatabaseError &error) {
        if (error.kind() == DatabaseError::Kind::Newer)
            throw refused("The database " + m_label +
                          " was used by a newer version of clockwell-server. Update this program. Nothing was"
                          " moved.");
        // What is there has the name of something of ours, or lacks a part of it.
        const bool isInTheWay = error.sqlstate() == "23505" || error.sqlstate().starts_with("42");
        if (isInTheWay && error.sqlstate() != insufficientPrivilege)
            refuse(std::string{"cannot take the schema of this program: "} + error.what());
        throw;
    }
}

std::vector<PostgresColumn> MoveTarget::columnsOf(const TableLayout &table)
{
    const auto there = postgresColumns(*m_connection, table.name);
    std::vector<PostgresColumn> columns;
    for (const std::string &name : table.columns)
        if (const auto found = std::ranges::find(there, name, &PostgresColumn::name); found != there.end())
            columns.push_back(*found);
    if (columns.size() != table.columns.size() || columns.size() != there.size())
        refuse("has no table " + table.name + " with the same columns as the file's");
    return columns;
}

void MoveTarget::forEachRow(const TableLayout &table, const std::function<void(const StoredRow &)> &onRow)
{
    forEachPostgresRow(*m_connection, sortedPostgresRows(table), columnsOf(table), onRow);
}

void MoveTarget::refuse(const std::string &reason) const
{
    throw refused("The database " + m_label + " " + reason +
                  ". Make a new one, with ENCODING 'UTF8', and move there. Nothing was moved.");
}

} // namespace clockwell::server
