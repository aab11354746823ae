#pragma once

#include <libpq-fe.h>
#include <soci/soci.h>

#include <memory>

namespace clockwell::server {

// libpq itself, for what SOCI does not offer.

/// libpq's own connection behind a session of PostgreSQL.
PGconn *handleOf(soci::session &session);

struct PostgresResultDeleter
{
    void operator()(PGresult *result) const { ::PQclear(result); }
};
using PostgresResult = std::unique_ptr<PGresult, PostgresResultDeleter>;

/// Throws DatabaseError unless the result has the expected status. Without libpq's message, which may contain
/// values.
void requireStatus(PGconn *handle, const PostgresResult &result, ExecStatusType expected);

/// Waits for all results of what was sent, and returns the first.
PostgresResult takeResult(PGconn *handle);

} // namespace clockwell::server
