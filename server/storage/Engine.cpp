#include "server/storage/Engine.h"

#include "server/storage/PostgresEngine.h"
#include "server/storage/PostgresUrl.h"
#include "server/storage/SqliteEngine.h"

namespace clockwell::server {

std::unique_ptr<Engine> engineFor(const std::string &database, const DatabaseOptions &options)
{
    if (isPostgresUrl(database))
        return std::make_unique<PostgresEngine>(database, options);
    return std::make_unique<SqliteEngine>(database, options);
}

} // namespace clockwell::server
