#pragma once

#include "server/storage/Engine.h"

namespace clockwell::server {

/// Connections that all read and write: writing is SERIALIZABLE, reading REPEATABLE READ. Nothing is
/// kept in a session but prepared statements and limits of time, and nothing is locked but by reading and
/// writing rows.
class PostgresEngine : public Engine
{
public:
    PostgresEngine(std::string url, const DatabaseOptions &options)
        : m_url(std::move(url)), m_options(options)
    {}

    bool hasOneWriter() const override { return false; }
    std::size_t connections() const override;
    std::unique_ptr<Connection> openWriter() override { return openReader(); }
    std::unique_ptr<Connection> openReader() override;
    void beginWriting(Connection &connection, Wait::Clock::time_point until) override;
    void beginReading(Connection &connection, Wait::Clock::time_point until) override;
    std::chrono::seconds migrationTimeout() const override;
    bool mayBeFromMigrationElsewhere(const DatabaseError &error) const override;

private:
    std::string m_url;
    DatabaseOptions m_options;
};

/// The names of the tables that a connection sees without naming a schema.
inline constexpr const char *postgresTablesSql =
    "SELECT table_name FROM information_schema.tables WHERE table_schema = current_schema()";

/// One connection to the database of a URL, as all others. `lockTimeout`: how long a statement waits
/// for another transaction's lock.
std::unique_ptr<Connection> connectPostgres(const std::string &url, std::chrono::milliseconds lockTimeout);

} // namespace clockwell::server
