#include "server/storage/Migrations.h"

#include "server/storage/DatabaseError.h"
#include "server/storage/Driver.h"
#include "server/storage/Schema.h"

namespace clockwell::server {

int schemaVersion()
{
    return static_cast<int>(schemaSteps().size());
}

long long storedSchemaVersion(Connection &connection)
{
    return connection.value<long long>("SELECT COALESCE(MAX(version), 0) FROM schema_migrations");
}

std::string newerSchemaText(const std::string &name, long long version)
{
    return name + " was written by a newer version of clockwell-server (schema " + std::to_string(version) +
           ", this program knows " + std::to_string(schemaVersion()) + "). Update this program.";
}

void migrate(Connection &connection)
{
    const bool isPostgres = &connection.driver() == &postgresDriver();
    const auto &steps = isPostgres ? postgresSchemaSteps() : schemaSteps();
    connection.execute("CREATE TABLE IF NOT EXISTS schema_migrations (version INTEGER NOT NULL PRIMARY KEY)");
    const long long found = storedSchemaVersion(connection);
    if (found > schemaVersion())
        throw DatabaseError{DatabaseError::Kind::Newer, newerSchemaText("The database", found)};
    for (long long version = found + 1; version <= schemaVersion(); ++version) {
        // First: servers that start at the same time wait for this row.
        connection.execute("INSERT INTO schema_migrations (version) VALUES (:version)", version);
        for (const std::string &statement : steps[static_cast<std::size_t>(version - 1)])
            connection.execute(statement);
    }
}

} // namespace clockwell::server
