#pragma once

#include "server/storage/Engine.h"

namespace clockwell::server {

/// One connection that writes, some that read beside it, all in WAL mode with every commit flushed to the
/// disk.
class SqliteEngine : public Engine
{
public:
    SqliteEngine(std::string file, const DatabaseOptions &options)
        : m_file(std::move(file)), m_options(options)
    {}

    bool hasOneWriter() const override { return true; }
    std::size_t connections() const override { return m_options.readers; }
    std::unique_ptr<Connection> openWriter() override;
    std::unique_ptr<Connection> openReader() override;
    void beginWriting(Connection &connection, Wait::Clock::time_point until) override;
    void beginReading(Connection &connection, Wait::Clock::time_point /*until*/) override
    {
        connection.execute("BEGIN");
    }
    std::chrono::seconds migrationTimeout() const override { return m_options.timeout; }
    bool mayBeFromMigrationElsewhere(const DatabaseError & /*error*/) const override { return false; }

private:
    int timeoutSeconds() const { return static_cast<int>(m_options.timeout.count()); }
    void limitSize(Connection &writer) const;

    std::string m_file;
    DatabaseOptions m_options;
};

/// Throws DatabaseError when others than the owner may read or write the file, or one that SQLite keeps
/// beside it.
void requirePrivate(const std::string &file);

} // namespace clockwell::server
