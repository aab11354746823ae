#include "BarePostgres.h"

#include <libpq-fe.h>

#include <stdexcept>

namespace clockwell::bench {

namespace {

using Result = std::unique_ptr<PGresult, decltype(&PQclear)>;

} // namespace

void BarePostgres::Close::operator()(pg_conn *connection) const
{
    PQfinish(connection);
}

BarePostgres::BarePostgres(const std::string &url) : m_connection(PQconnectdb(url.c_str()))
{
    execute("SET client_min_messages = warning");
    execute("CREATE TABLE IF NOT EXISTS bare_punches (id TEXT NOT NULL PRIMARY KEY, type TEXT NOT NULL,"
            " at BIGINT NOT NULL, device_id TEXT NOT NULL, latitude DOUBLE PRECISION NOT NULL,"
            " longitude DOUBLE PRECISION NOT NULL, accuracy DOUBLE PRECISION NOT NULL,"
            " distance DOUBLE PRECISION NOT NULL)");
    execute("PREPARE add_punch AS INSERT INTO bare_punches"
            " VALUES (gen_random_uuid()::text, 'IN', 1, 'device', 54.1234, 9.5678, 8, 0)");
}

void BarePostgres::commit(int count)
{
    for (int index = 0; index < count; ++index) {
        const Result result{PQexecPrepared(m_connection.get(), "add_punch", 0, nullptr, nullptr, nullptr, 0),
                            &PQclear};
        if (PQresultStatus(result.get()) != PGRES_COMMAND_OK)
            throw std::runtime_error{PQerrorMessage(m_connection.get())};
    }
}

void BarePostgres::execute(const char *sql)
{
    const Result result{PQexec(m_connection.get(), sql), &PQclear};
    if (PQresultStatus(result.get()) != PGRES_COMMAND_OK)
        throw std::runtime_error{PQerrorMessage(m_connection.get())};
}

} // namespace clockwell::bench
