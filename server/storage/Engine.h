#pragma once

#include "server/storage/Connection.h"
#include "server/storage/Turns.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace clockwell::server {

struct DatabaseOptions
{
    std::chrono::seconds timeout{5}; ///< of a request that waits for its turn, and for other processes
    std::size_t readers = 4;         ///< SQLite: connections for reading; more requests than that wait
    std::size_t connections = 0;     ///< PostgreSQL: for reading and writing; 0: as many as `readers`
    /// PostgreSQL: how long the end of a transaction may take, if its wait is not longer. Less than the time
    /// after which an app gives up a request.
    std::chrono::milliseconds longestCommit = std::chrono::seconds{15};
    unsigned long long maximumBytes = 0; ///< the SQLite file never grows beyond this; 0 for no limit
    /// Told why PostgreSQL had a transaction run again, on several threads; may be empty.
    std::function<void(std::string_view sqlstate)> onRetry = {};
};

/// What differs between the databases: connections and the begin of transactions. Safe on several threads.
/// All operations throw DatabaseError.
class Engine
{
public:
    virtual ~Engine() = default;

    /// Whether only one transaction can write at a time, on a connection of its own.
    virtual bool hasOneWriter() const = 0;
    virtual std::size_t connections() const = 0; ///< for reading, and for writing if that has none of its own
    virtual std::unique_ptr<Connection> openWriter() = 0;
    virtual std::unique_ptr<Connection> openReader() = 0;

    /// `until`: how long it waits for other processes.
    virtual void beginWriting(Connection &connection, Wait::Clock::time_point until) = 0;
    virtual void beginReading(Connection &connection, Wait::Clock::time_point until) = 0;

    /// How long the start waits for another process that brings the schema up to date.
    virtual std::chrono::seconds migrationTimeout() const = 0;
    /// Whether an error may mean that another process has just made a step of the schema.
    virtual bool mayBeFromMigrationElsewhere(const DatabaseError &error) const = 0;
};

/// For a SQLite file, which is made when it is not there (readable by its owner only), or a URL of
/// PostgreSQL.
std::unique_ptr<Engine> engineFor(const std::string &database, const DatabaseOptions &options);

} // namespace clockwell::server
