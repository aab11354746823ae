#pragma once

#include "server/storage/Connection.h"

#include <memory>
#include <mutex>
#include <string>

namespace clockwell::server {

/// Finds out whether requests can be answered from the database. Safe on several threads.
class Readiness
{
public:
    /// `database`: a file or a URL, see engineFor().
    explicit Readiness(std::string database) : m_database(std::move(database)) {}

    /// Asks on a connection that nothing else uses. Throws DatabaseError when the database is not there, not
    /// ours, of another version than this program, or blocked for longer than a second. Of PostgreSQL also
    /// when it can only be read. A SQLite file is opened anew each time, so that nothing comes from what
    /// another connection remembers, and something is read from each of its tables; damage further inside is
    /// for `admin backup` to find.
    void require();

private:
    void requirePostgres();

    std::string m_database;
    std::mutex m_mutex;
    std::unique_ptr<Connection> m_postgres; // kept, for each new one is a process of PostgreSQL's
};

} // namespace clockwell::server
