#include "server/storage/Connection.h"

#include "server/storage/SqliteError.h"

#include <soci/sqlite3/soci-sqlite3.h> // puts SQLite's own functions into the namespace sqlite_api

namespace clockwell::server {

Connection::Connection(const std::string &file, int busySeconds)
try : m_session(soci::sqlite3, "dbname=\"" + file + "\" timeout=" + std::to_string(busySeconds)) {
} catch (...) {
    rethrow();
}

soci::statement &Connection::prepared(const std::string &sql)
{
    const auto known = m_statements.find(sql);
    if (known != m_statements.end())
        return known->second;
    soci::statement statement{m_session};
    statement.alloc();
    statement.prepare(sql);
    return m_statements.emplace(sql, statement).first->second;
}

void Connection::rethrow()
{
    try {
        throw;
    } catch (const soci::sqlite3_soci_error &error) {
        // Without SOCI's context: that would carry the values of the parameters, and so into the log.
        throw sqliteError(error.result());
    } catch (const soci::soci_error &error) {
        throw DatabaseError{DatabaseError::Kind::Unusable, error.get_error_message()};
    }
}

} // namespace clockwell::server
