#include "BareCommits.h"

#include <sqlite3.h>

#include <stdexcept>

namespace clockwell::server::bench {

BareCommits::BareCommits(const std::string &file)
{
    if (sqlite3_open(file.c_str(), &m_database) != SQLITE_OK)
        throw std::runtime_error{"SQLite cannot open " + file};
    execute("PRAGMA journal_mode=WAL");
    execute("PRAGMA synchronous=FULL");
    execute(
        "CREATE TABLE punches (id TEXT NOT NULL PRIMARY KEY, type TEXT NOT NULL, at INTEGER NOT NULL,"
        " device_id TEXT NOT NULL, latitude REAL NOT NULL, longitude REAL NOT NULL, accuracy REAL NOT NULL,"
        " distance REAL NOT NULL)");
    if (sqlite3_prepare_v2(m_database,
                           "INSERT INTO punches VALUES (?, 'IN', ?, 'device', 54.1234, 9.5678, 8, 0)", -1,
                           &m_insert, nullptr) != SQLITE_OK)
        throw std::runtime_error{sqlite3_errmsg(m_database)};
}

BareCommits::~BareCommits()
{
    sqlite3_finalize(m_insert);
    sqlite3_close(m_database);
}

void BareCommits::commit(int count)
{
    for (int index = 0; index < count; ++index) {
        const std::string id = "punch-" + std::to_string(++m_next);
        sqlite3_bind_text(m_insert, 1, id.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_int64(m_insert, 2, m_next);
        if (sqlite3_step(m_insert) != SQLITE_DONE)
            throw std::runtime_error{sqlite3_errmsg(m_database)};
        sqlite3_reset(m_insert);
    }
}

void BareCommits::execute(const char *sql)
{
    if (sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error{sqlite3_errmsg(m_database)};
}

} // namespace clockwell::server::bench
