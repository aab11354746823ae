#include "server/storage/PostgresResult.h"

#include "server/storage/PostgresError.h"

#include <string>

namespace clockwell::server {

void requireStatus(PGconn *handle, const PostgresResult &result, ExecStatusType expected)
{
    if (result && ::PQresultStatus(result.get()) == expected)
        return;
    const char *state = result ? ::PQresultErrorField(result.get(), PG_DIAG_SQLSTATE) : nullptr;
    const std::string sqlstate = state == nullptr ? "" : state;
    throw ::PQstatus(handle) != CONNECTION_OK || sqlstate.empty() ? lostConnection(sqlstate)
                                                                  : postgresError(sqlstate);
}

PostgresResult takeResult(PGconn *handle)
{
    PostgresResult result{::PQgetResult(handle)};
    while (const PostgresResult more{::PQgetResult(handle)}) {
    }
    return result;
}

} // namespace clockwell::server
