#pragma once

#include "server/storage/Connection.h"
#include "server/storage/StoredRow.h"

#include <string>

struct pg_conn;

namespace clockwell::server {

/// Rows on their way into a table of PostgreSQL, many in one message (its COPY): a statement for each would
/// cost a round trip each. Part of the connection's transaction; meanwhile the connection does nothing else.
/// All operations throw DatabaseError.
class PostgresWriter
{
public:
    /// `into`: the table and its columns, as in "TABLE (COLUMN, COLUMN)".
    PostgresWriter(Connection &connection, const std::string &into);
    ~PostgresWriter(); ///< without finish() before, no row was added and the transaction has failed
    PostgresWriter(const PostgresWriter &) = delete;
    PostgresWriter &operator=(const PostgresWriter &) = delete;

    /// One value for each column. Bytes that are no text cannot be stored.
    void add(const StoredRow &row);
    void finish();

private:
    void send();

    pg_conn *m_handle;
    std::string m_unsent;
    bool m_isFinished = false;
};

} // namespace clockwell::server
