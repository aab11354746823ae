#include "server/storage/Migrations.h"

#include "server/storage/DatabaseError.h"
#include "server/storage/Schema.h"

namespace clockwell::server {

int schemaVersion()
{
    return static_cast<int>(schemaSteps().size());
}

void migrate(Connection &connection)
{
    connection.execute("CREATE TABLE IF NOT EXISTS schema_migrations (version INTEGER NOT NULL PRIMARY KEY)");
    const auto found = connection.value<long long>("SELECT COALESCE(MAX(version), 0) FROM schema_migrations");
    if (found > schemaVersion())
        throw DatabaseError{DatabaseError::Kind::Newer,
                            "The database was written by a newer version of clockwell-server (schema " +
                                std::to_string(found) + ", this program knows " +
                                std::to_string(schemaVersion()) + "). Update this program."};
    for (long long version = found + 1; version <= schemaVersion(); ++version) {
        for (const std::string &statement : schemaSteps()[static_cast<std::size_t>(version - 1)])
            connection.execute(statement);
        connection.execute("INSERT INTO schema_migrations (version) VALUES (:version)", version);
    }
}

} // namespace clockwell::server
