#include "server/storage/SqliteFile.h"

#include "server/storage/SqliteError.h"

#include <sqlite3.h>

#include <chrono>
#include <thread>

namespace clockwell::server {

namespace {

constexpr int busyMilliseconds = 2000;
constexpr int copyAttempts = 100;
constexpr std::chrono::milliseconds copyPause{50};

int addFirstColumn(void *rows, int count, char **values, char ** /*names*/)
{
    if (count > 0)
        static_cast<std::vector<std::string> *>(rows)->emplace_back(values[0] == nullptr ? "" : values[0]);
    return 0;
}

struct Finalizer
{
    void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
};

StoredValue storedValue(sqlite3_stmt *statement, int column)
{
    const auto bytes = [&](const void *begin) {
        const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
        return std::string_view{static_cast<const char *>(begin), size};
    };
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
        return static_cast<long long>(sqlite3_column_int64(statement, column));
    case SQLITE_FLOAT:
        return sqlite3_column_double(statement, column);
    case SQLITE_TEXT:
        return bytes(sqlite3_column_text(statement, column));
    case SQLITE_BLOB:
        return StoredBytes{bytes(sqlite3_column_blob(statement, column))};
    default:
        return {};
    }
}

int copyAll(sqlite3_backup *copy)
{
    // All pages in one step: with several, every commit of a server would make the copy start again.
    int result = sqlite3_backup_step(copy, -1);
    for (int i = 1; i < copyAttempts && (result == SQLITE_BUSY || result == SQLITE_LOCKED); ++i) {
        std::this_thread::sleep_for(copyPause);
        result = sqlite3_backup_step(copy, -1);
    }
    return result;
}

} // namespace

SqliteFile::SqliteFile(const std::string &file)
{
    sqlite3 *handle = nullptr;
    const int result = sqlite3_open_v2(file.c_str(), &handle, SQLITE_OPEN_READWRITE, nullptr);
    m_handle.reset(handle); // also a failure gives a handle to close
    if (result != SQLITE_OK)
        throw sqliteError(result);
    sqlite3_busy_timeout(handle, busyMilliseconds);
}

void SqliteFile::Closer::operator()(sqlite3 *handle) const
{
    sqlite3_close(handle);
}

std::vector<std::string> SqliteFile::column(const std::string &sql)
{
    std::vector<std::string> rows;
    const int result = sqlite3_exec(m_handle.get(), sql.c_str(), addFirstColumn, &rows, nullptr);
    if (result != SQLITE_OK)
        throw sqliteError(result);
    return rows;
}

std::string SqliteFile::value(const std::string &sql)
{
    const auto rows = column(sql);
    if (rows.empty())
        throw std::runtime_error{"no row where one was expected"};
    return rows.front();
}

void SqliteFile::forEachRow(const std::string &sql, const std::function<void(const StoredRow &)> &onRow)
{
    sqlite3_stmt *prepared = nullptr;
    int result = sqlite3_prepare_v2(m_handle.get(), sql.c_str(), -1, &prepared, nullptr);
    const std::unique_ptr<sqlite3_stmt, Finalizer> statement{prepared};
    if (result != SQLITE_OK)
        throw sqliteError(result);
    StoredRow row(static_cast<std::size_t>(sqlite3_column_count(prepared)));
    while ((result = sqlite3_step(prepared)) == SQLITE_ROW) {
        int column = 0;
        for (StoredValue &value : row)
            value = storedValue(prepared, column++);
        onRow(row);
    }
    if (result != SQLITE_DONE)
        throw sqliteError(result);
}

bool SqliteFile::holdAlone()
{
    try {
        execute("PRAGMA locking_mode = EXCLUSIVE"); // no lock that is taken from now on is given back
        execute("BEGIN EXCLUSIVE");
        execute("COMMIT");
        return true;
    } catch (const DatabaseError &error) {
        if (error.kind() == DatabaseError::Kind::Busy)
            return false;
        throw;
    }
}

void SqliteFile::copyTo(SqliteFile &other)
{
    sqlite3_backup *copy = sqlite3_backup_init(other.m_handle.get(), "main", m_handle.get(), "main");
    if (copy == nullptr)
        throw sqliteError(sqlite3_extended_errcode(other.m_handle.get()));
    const int result = copyAll(copy);
    const int finished = sqlite3_backup_finish(copy);
    if (result != SQLITE_DONE)
        throw sqliteError(result);
    if (finished != SQLITE_OK)
        throw sqliteError(finished);
}

} // namespace clockwell::server
