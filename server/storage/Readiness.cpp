#include "server/storage/Readiness.h"

#include "server/storage/DatabaseError.h"
#include "server/storage/Migrations.h"
#include "server/storage/PostgresEngine.h"
#include "server/storage/PostgresUrl.h"

namespace clockwell::server {

namespace {

constexpr std::chrono::seconds readinessTimeout{1};

void requireVersion(Connection &connection)
{
    const long long found = storedSchemaVersion(connection);
    if (found != schemaVersion())
        throw DatabaseError{DatabaseError::Kind::Newer, "its schema is of version " + std::to_string(found) +
                                                            ", and this program works with " +
                                                            std::to_string(schemaVersion())};
}

void requireWritable(Connection &postgres)
{
    if (postgres.value<std::string>("SHOW transaction_read_only") != "off")
        throw DatabaseError{DatabaseError::Kind::ReadOnly, "the database can only be read"};
}

void readEachTable(Connection &sqlite)
{
    const auto tables = sqlite.column<std::string>("SELECT name FROM sqlite_master WHERE type = 'table'");
    if (tables.empty())
        throw DatabaseError{DatabaseError::Kind::Damaged, "the database has no tables"};
    for (const std::string &table : tables)
        sqlite.value<long long>("SELECT COUNT(*) FROM (SELECT * FROM \"" + table + "\" LIMIT 1) AS one");
}

} // namespace

void Readiness::require()
{
    if (isPostgresUrl(m_database))
        return requirePostgres();
    Connection connection{m_database, static_cast<int>(readinessTimeout.count()),
                          Connection::Access::ReadOnly};
    readEachTable(connection);
    requireVersion(connection);
}

void Readiness::requirePostgres()
{
    const std::scoped_lock lock(m_mutex);
    for (bool isKept = m_postgres != nullptr;; isKept = false) {
        try {
            if (!m_postgres)
                m_postgres = connectPostgres(m_database, readinessTimeout);
            requireWritable(*m_postgres);
            return requireVersion(*m_postgres);
        } catch (const DatabaseError &error) {
            m_postgres.reset();
            if (!isKept || error.kind() != DatabaseError::Kind::Lost)
                throw;
        }
    }
}

} // namespace clockwell::server
