#pragma once

#include <memory>
#include <string>

struct pg_conn;

namespace clockwell::bench {

/// PostgreSQL alone, as durable as it is set up: one row like a punch in a transaction of its own, one
/// prepared statement. Throws std::runtime_error.
class BarePostgres
{
public:
    /// Makes its table, of which any other of these objects is a user.
    explicit BarePostgres(const std::string &url);

    void commit(int count);

private:
    struct Close
    {
        void operator()(pg_conn *connection) const;
    };

    void execute(const char *sql);

    std::unique_ptr<pg_conn, Close> m_connection;
};

} // namespace clockwell::bench
