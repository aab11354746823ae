#pragma once

#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace clockwell::server::bench {

/// SQLite alone, as durable as the server: one row like a punch in a transaction of its own, WAL, every
/// commit flushed to the disk, one prepared statement. Throws std::runtime_error.
class BareCommits
{
public:
    explicit BareCommits(const std::string &file);
    BareCommits(const BareCommits &) = delete;
    BareCommits &operator=(const BareCommits &) = delete;
    ~BareCommits();

    void commit(int count);

private:
    void execute(const char *sql);

    sqlite3 *m_database = nullptr;
    sqlite3_stmt *m_insert = nullptr;
    long long m_next = 0;
};

} // namespace clockwell::server::bench
