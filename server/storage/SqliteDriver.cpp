#include "server/storage/Driver.h"
#include "server/storage/SqliteError.h"

#include <soci/sqlite3/soci-sqlite3.h> // puts SQLite's own functions into the namespace sqlite_api

namespace clockwell::server {

namespace {

// SOCI's library does not export what the sanitizer would check the type of the backend with.
__attribute__((no_sanitize("vptr"))) int systemErrorOf(soci::session *session)
{
    if (session == nullptr)
        return 0;
    const auto *backend = static_cast<soci::sqlite3_session_backend *>(session->get_backend());
    return sqlite_api::sqlite3_system_errno(backend->conn_);
}

class SqliteDriver : public Driver
{
public:
    const soci::backend_factory &factory() const override { return soci::sqlite3; }

    DatabaseError translated(soci::session *session) const override
    {
        try {
            throw;
        } catch (const soci::sqlite3_soci_error &error) {
            return sqliteError(error.result(), systemErrorOf(session));
        } catch (const soci::soci_error &error) {
            return {DatabaseError::Kind::Unusable, error.get_error_message()};
        }
    }

    void prepare(soci::session & /*session*/) const override {}
    bool isReady(soci::session & /*session*/) const override { return true; }
    bool takesNul() const override { return true; }
    bool keepsFailedStatements() const override { return false; }
    void commit(soci::session &session, std::chrono::steady_clock::time_point /*until*/) const override
    {
        session.commit();
    }
};

} // namespace

const Driver &sqliteDriver()
{
    static const SqliteDriver driver;
    return driver;
}

} // namespace clockwell::server
