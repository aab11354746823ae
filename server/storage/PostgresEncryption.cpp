#include "server/storage/PostgresEncryption.h"

#include "server/storage/PostgresResult.h"

namespace clockwell::server {

std::string unencryptedAddress(Connection &connection)
{
    PGconn *handle = handleOf(connection.session());
    const bool isEncrypted = ::PQsslInUse(handle) != 0 || ::PQgssEncInUse(handle) != 0;
    return isEncrypted ? "" : ::PQhostaddr(handle);
}

} // namespace clockwell::server
