#include "server/storage/SqliteError.h"

#include <sqlite3.h>

#include <cerrno>

namespace clockwell::server {

namespace {

DatabaseError::Kind kindOfResult(int code)
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

/// No room on the disk, for this user, or for a file of this size.
bool meansFull(int systemError)
{
    return systemError == ENOSPC || systemError == EDQUOT || systemError == EFBIG;
}

} // namespace

DatabaseError sqliteError(int code, int systemError)
{
    const bool full = (code & 0xff) == SQLITE_IOERR && meansFull(systemError);
    const int meant = full ? SQLITE_FULL : code;
    return {kindOfResult(meant), sqlite3_errstr(meant)};
}

} // namespace clockwell::server
