#pragma once

#include <libpq-fe.h>
#include <soci/soci.h>

#include <memory>

namespace clockwell::server {

// What goes past SOCI, in the words of libpq.

/// libpq's own connection behind a session of PostgreSQL.
PGconn *handleOf(soci::session &session);

struct PostgresResultDeleter
{
    void operator()(PGresult *result) const { ::PQclear(result); }
};
using PostgresResult = std::unique_ptr<PGresult, PostgresResultDeleter>;

/// Throws DatabaseError unless the result is the expected one. What libpq says is dropped, for it repeats
/// values.
void requireStatus(PGconn *handle, const PostgresResult &result, ExecStatusType expected);

/// Waits for the answer to what was sent, and takes it all; returns its first part.
PostgresResult takeResult(PGconn *handle);

} // namespace clockwell::server
