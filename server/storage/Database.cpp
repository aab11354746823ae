#include "server/storage/Database.h"

#include "server/storage/Migrations.h"
#include "server/storage/PostgresUrl.h"

#include <thread>

namespace clockwell::server {

namespace {

constexpr std::chrono::milliseconds migrationPause{100};

} // namespace

Database::Database(const std::string &database, DatabaseOptions options)
    : m_options(options), m_engine(engineFor(database, options))
{
    using Kind = DatabaseError::Kind;
    m_readers =
        std::make_unique<ConnectionPool>(m_engine->connections(), [this] { return m_engine->openReader(); });
    if (m_engine->hasOneWriter())
        m_writer = std::make_unique<ConnectionPool>(1, [this] { return m_engine->openWriter(); });
    try {
        bringUpToDate();
        if (m_engine->hasOneWriter())
            m_readers->openAll();
    } catch (const DatabaseError &error) {
        if (error.kind() == Kind::Newer || error.kind() == Kind::Exposed)
            throw; // says all in its own words
        throw DatabaseError{error.kind(), "The database " + databaseLabel(database) +
                                              " cannot be used: " + error.what() + "."};
    }
}

/// Several servers may do this at once. Each step begins with inserting its version, a primary key: the other
/// servers wait for that, fail, and find the step done when they try again.
void Database::bringUpToDate()
{
    const auto until = Wait::Clock::now() + m_engine->migrationTimeout();
    for (int failures = 0;;) {
        try {
            return write(
                {until, false}, [](Connection &connection) { migrate(connection); });
        } catch (const DatabaseError &error) {
            if (!m_engine->mayBeFromMigrationElsewhere(error) || Wait::Clock::now() >= until)
                throw;
            // At most one for each step, and one for the table of versions.
            if (error.kind() != DatabaseError::Kind::Busy && ++failures > schemaVersion() + 1)
                throw;
        }
        std::this_thread::sleep_for(migrationPause);
    }
}

} // namespace clockwell::server
