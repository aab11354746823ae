#include "server/storage/PostgresEngine.h"

#include "server/storage/DatabaseError.h"
#include "server/storage/Driver.h"
#include "server/storage/PostgresUrl.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace clockwell::server {

namespace {

// Of one try; a request tries until its own time is over.
constexpr std::chrono::milliseconds requestLockTimeout{500};

// For a server whose machine is gone: what it had locked comes free, although nobody closes its connection.
constexpr std::chrono::milliseconds longestIdleTransaction{60'000};

// Of several servers that start at once, all but one fail to make what that one has just made.
constexpr std::array<std::string_view, 3> migratedElsewhere{
    "23505", // the row of a version, or the name of a table
    "42P07", // a table
    "42710", // another part of the schema
};

} // namespace

std::unique_ptr<Connection> connectPostgres(const std::string &url, std::chrono::milliseconds lockTimeout)
{
    auto connection = std::make_unique<Connection>(postgresDriver(), postgresConnectText(url));
    // In any other encoding lengths would count bytes, and some texts could not be stored.
    if (const auto encoding = connection->value<std::string>("SHOW server_encoding"); encoding != "UTF8")
        throw DatabaseError{DatabaseError::Kind::Unusable,
                            "its encoding is " + encoding + "; it has to be made with ENCODING 'UTF8'"};
    // Of a small table PostgreSQL would rather read all rows than use an index. In a SERIALIZABLE transaction
    // that conflicts with every other one that writes to the table. Without sequential scans, a query that
    // needs one is estimated as so costly that it would be compiled each time.
    connection->value<std::string>("SELECT set_config('enable_seqscan', 'off', false) ||"
                                   " set_config('jit', 'off', false) ||"
                                   " set_config('lock_timeout', :lock, false) ||"
                                   " set_config('idle_in_transaction_session_timeout', :idle, false)",
                                   std::to_string(lockTimeout.count()),
                                   std::to_string(longestIdleTransaction.count()));
    return connection;
}

std::size_t PostgresEngine::connections() const
{
    return m_options.connections > 0 ? m_options.connections : m_options.readers;
}

std::unique_ptr<Connection> PostgresEngine::openReader()
{
    return connectPostgres(m_url, requestLockTimeout);
}

void PostgresEngine::beginWriting(Connection &connection, Wait::Clock::time_point /*until*/)
{
    connection.execute("BEGIN ISOLATION LEVEL SERIALIZABLE");
}

void PostgresEngine::beginReading(Connection &connection, Wait::Clock::time_point /*until*/)
{
    connection.execute("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY");
}

std::chrono::seconds PostgresEngine::migrationTimeout() const
{
    return std::chrono::minutes{5}; // for the changes to the tables of a large organisation
}

bool PostgresEngine::mayBeFromMigrationElsewhere(const DatabaseError &error) const
{
    return error.kind() == DatabaseError::Kind::Busy ||
           std::ranges::find(migratedElsewhere, error.sqlstate()) != migratedElsewhere.end();
}

} // namespace clockwell::server
