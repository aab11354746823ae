#include "server/storage/SqliteError.h"

#include <sqlite3.h>

namespace clockwell::server {

namespace {

DatabaseError::Kind kindOf(int code)
{
    using Kind = DatabaseError::Kind;
    switch (code & 0xff) { // the low byte is the primary code
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return Kind::Busy;
    case SQLITE_FULL:
        return Kind::Full;
    case SQLITE_READONLY:
        return Kind::ReadOnly;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return Kind::Damaged;
    case SQLITE_CONSTRAINT:
        return Kind::Constraint;
    default:
        return Kind::Unusable;
    }
}

} // namespace

DatabaseError sqliteError(int code)
{
    return {kindOf(code), sqlite3_errstr(code)};
}

} // namespace clockwell::server
