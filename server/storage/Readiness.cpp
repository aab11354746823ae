#include "server/storage/Readiness.h"

#include "server/storage/Connection.h"
#include "server/storage/DatabaseError.h"

namespace clockwell::server {

void requireReadableDatabase(const std::string &file)
{
    constexpr int patienceSeconds = 1;
    Connection connection{file, patienceSeconds, Connection::Access::ReadOnly};
    const auto tables =
        connection.all<SingleColumn<std::string>>("SELECT name FROM sqlite_master WHERE type = 'table'");
    if (tables.empty())
        throw DatabaseError{DatabaseError::Kind::Damaged, "the database has no tables"};
    for (const auto &table : tables)
        connection.value<long long>("SELECT COUNT(*) FROM (SELECT * FROM \"" + table.value + "\" LIMIT 1)");
}

} // namespace clockwell::server
