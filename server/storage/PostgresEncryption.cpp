#include "server/storage/PostgresEncryption.h"

#include "server/storage/PostgresUrl.h"

#include <libpq-fe.h>

#include <memory>

namespace clockwell::server {

std::string unencryptedAddress(const std::string &url)
{
    const std::unique_ptr<PGconn, decltype(&::PQfinish)> connection{
        ::PQconnectdb(postgresConnectText(url).c_str()), ::PQfinish};
    const bool isThere = ::PQstatus(connection.get()) == CONNECTION_OK;
    const bool isEncrypted = ::PQsslInUse(connection.get()) != 0 || ::PQgssEncInUse(connection.get()) != 0;
    return isThere && !isEncrypted ? ::PQhostaddr(connection.get()) : "";
}

} // namespace clockwell::server
