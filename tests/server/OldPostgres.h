#pragma once

#include "server/storage/PostgresEngine.h"
#include "server/storage/Schema.h"

namespace clockwell::server::test {

/// Makes an empty database of PostgreSQL one as a version with fewer steps of the schema left it, with an
/// employee and a day of attendance. `steps`: at most 2, for later the tables have further columns.
inline void makeOldPostgres(const std::string &url, std::size_t steps)
{
    const auto old = connectPostgres(url, std::chrono::seconds{5});
    old->execute("CREATE TABLE schema_migrations (version INTEGER NOT NULL PRIMARY KEY)");
    for (std::size_t step = 1; step <= steps; ++step) {
        for (const std::string &statement : postgresSchemaSteps().at(step - 1))
            old->execute(statement);
        old->execute("INSERT INTO schema_migrations (version) VALUES (:version)", step);
    }
    old->execute("INSERT INTO employees (id, full_name, email, email_key, password_hash, role, status,"
                 " email_verified, joined_on, created_at) VALUES ('e', 'Kim', 'k@example.org',"
                 " 'k@example.org', 'none', 'EMPLOYEE', 'APPROVED', 1, '2020-01-01', 0)");
    old->execute("INSERT INTO attendance VALUES ('a', 'e', '2026-05-01', 1, 2, 3, 4, 5, 6.5, NULL, NULL)");
    old->execute("INSERT INTO punches VALUES ('p', 'a', 'IN', 5, 'd', 48, 11, 7, 6.5)");
}

} // namespace clockwell::server::test
