#include "server/admin/SqliteFile.h"

#include "server/admin/AdminError.h"
#include "server/storage/SqliteError.h"

#include <sqlite3.h>

#include <chrono>
#include <filesystem>
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

void requireNoCompanions(const std::string &file)
{
    for (const char *suffix : {"-wal", "-journal", "-shm"}) {
        std::error_code ignored;
        const std::string companion = file + suffix;
        if (std::filesystem::exists(std::filesystem::symlink_status(companion, ignored)))
            throw AdminError{AdminError::Kind::Refused,
                             "There is a file " + companion +
                                 ", which SQLite would take for a part of the new file. Move it away first."};
    }
}

} // namespace clockwell::server
