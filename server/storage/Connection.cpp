#include "server/storage/Connection.h"

#include "server/storage/SqliteError.h"

#include <soci/sqlite3/soci-sqlite3.h> // puts SQLite's own functions into the namespace sqlite_api

namespace clockwell::server {

namespace {

/// Translates the exception that is being handled, without SOCI's context: that would carry the values of the
/// parameters, and so into the log.
[[noreturn]] void rethrowTranslated(int systemError)
{
    try {
        throw;
    } catch (const soci::sqlite3_soci_error &error) {
        throw sqliteError(error.result(), systemError);
    } catch (const soci::soci_error &error) {
        throw DatabaseError{DatabaseError::Kind::Unusable, error.get_error_message()};
    }
}

} // namespace

Connection::Connection(const std::string &file, int busySeconds, Access access)
try : m_session(soci::sqlite3, "dbname=\"" + file + "\" timeout=" + std::to_string(busySeconds) +
                                   (access == Access::ReadOnly ? " readonly=1" : "")) {
} catch (...) {
    rethrowTranslated(0);
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

// SOCI's library does not export what the sanitizer would check the type of the backend with.
__attribute__((no_sanitize("vptr"))) void Connection::rethrow()
{
    const auto *backend = static_cast<soci::sqlite3_session_backend *>(m_session.get_backend());
    rethrowTranslated(sqlite_api::sqlite3_system_errno(backend->conn_));
}

} // namespace clockwell::server
