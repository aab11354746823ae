#pragma once

#include "server/storage/StoredRow.h"

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

struct sqlite3;

namespace clockwell::server {

/// What SQLite appends to the name of a database for the files that it keeps beside it.
inline constexpr std::array sqliteCompanions{"-wal", "-shm", "-journal"};

/// One connection to a SQLite file that is there, through SQLite's own interface: for copying and checking
/// whole databases, which statements cannot do. Used by one thread. All operations throw DatabaseError.
class SqliteFile
{
public:
    /// Never makes a file, but a file without a byte is an empty database. ":memory:" is one as well.
    explicit SqliteFile(const std::string &file);

    void execute(const std::string &sql) { column(sql); }
    /// The first column of the result; null is an empty text.
    std::vector<std::string> column(const std::string &sql);
    /// The first column of the first row. Throws std::runtime_error when there is no row.
    std::string value(const std::string &sql);
    long long number(const std::string &sql) { return std::stoll(value(sql)); }

    /// Calls `onRow` with each row of a query, without ever holding all of them.
    void forEachRow(const std::string &sql, const std::function<void(const StoredRow &)> &onRow);

    /// Keeps all others out until this is closed, and changes nothing. False when another process or
    /// connection has the file open, even if it does nothing just now; with a file that is not in the mode of
    /// a write-ahead log, as before its first server, only when that one reads or writes just now.
    bool holdAlone();

    /// Makes the other database the same as this one is at one moment, also while others write here. The
    /// other one changes in one transaction: a failure or the end of the process leaves it as it was.
    void copyTo(SqliteFile &other);

private:
    struct Closer
    {
        void operator()(sqlite3 *handle) const;
    };
    std::unique_ptr<sqlite3, Closer> m_handle;
};

} // namespace clockwell::server
