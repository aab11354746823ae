#include "TestDatabase.h"

#include "server/storage/Database.h"
#include "server/storage/PostgresEngine.h"

#include <libpq-fe.h>
#include <unistd.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <stdexcept>
#include <vector>

namespace clockwell::server::test {

namespace {

constexpr const char *variable = "CLOCKWELL_TEST_POSTGRES";
constexpr const char *templateName = "clockwell_template";

std::string serverUrl()
{
    const char *url = std::getenv(variable);
    return url == nullptr ? std::string{} : url;
}

/// The server's URL with another database: postgresql://USER@/DATABASE?...
std::string urlOf(const std::string &database)
{
    const std::string url = serverUrl();
    const auto begin = url.find('/', std::string{"postgresql://"}.size()) + 1;
    return url.substr(0, begin) + database + url.substr(url.find('?'));
}

/// PostgreSQL makes and drops databases only outside of transactions.
class PostgresAdmin
{
public:
    PostgresAdmin() : m_connection(::PQconnectdb(serverUrl().c_str()), ::PQfinish)
    {
        if (::PQstatus(m_connection.get()) != CONNECTION_OK)
            throw std::runtime_error{::PQerrorMessage(m_connection.get())};
    }
    ~PostgresAdmin()
    {
        for (const std::string &name : m_made)
            ::PQclear(
                ::PQexec(m_connection.get(), ("DROP DATABASE IF EXISTS " + name + " WITH (FORCE)").c_str()));
    }
    PostgresAdmin(const PostgresAdmin &) = delete;
    PostgresAdmin &operator=(const PostgresAdmin &) = delete;

    std::string run(const std::string &sql)
    {
        const std::unique_ptr<PGresult, decltype(&::PQclear)> result{
            ::PQexec(m_connection.get(), sql.c_str()), ::PQclear};
        const auto status = ::PQresultStatus(result.get());
        if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK)
            throw std::runtime_error{::PQerrorMessage(m_connection.get())};
        return ::PQntuples(result.get()) > 0 ? ::PQgetvalue(result.get(), 0, 0) : "";
    }

    /// Its locale sorts and changes case otherwise than by code points: what relies on such an order fails.
    std::string makeEmpty()
    {
        return make("TEMPLATE template0 LOCALE_PROVIDER icu ICU_LOCALE 'en-US-u-ks-level2' ENCODING 'UTF8'");
    }
    std::string makeWithSchema()
    {
        requireTemplate();
        return make(std::string{"TEMPLATE "} + templateName);
    }

private:
    std::string make(const std::string &how)
    {
        m_made.push_back("test_" + std::to_string(::getpid()) + "_" + std::to_string(m_made.size()));
        run("CREATE DATABASE " + m_made.back() + " " + how);
        return urlOf(m_made.back());
    }

    /// Whoever comes first makes it; of several at once, the last ones find theirs superfluous.
    void requireTemplate()
    {
        const std::string count =
            std::string{"SELECT 1 FROM pg_database WHERE datname = '"} + templateName + "'";
        if (!run(count).empty())
            return;
        {
            Database migrated{makeEmpty()};
        }
        try {
            run("ALTER DATABASE " + m_made.back() + " RENAME TO " + templateName);
        } catch (const std::runtime_error &) {
            if (run(count).empty())
                throw;
        }
    }

    std::unique_ptr<PGconn, decltype(&::PQfinish)> m_connection;
    std::vector<std::string> m_made;
};

PostgresAdmin &admin()
{
    static PostgresAdmin one;
    return one;
}

} // namespace

bool testsPostgres()
{
    return !serverUrl().empty();
}

std::string databaseIn(const TempFolder &folder, const std::string &name)
{
    const std::string file = folder.file(name);
    if (!testsPostgres())
        return file;
    static std::map<std::string, std::string> known;
    const auto [entry, isNew] = known.try_emplace(file);
    if (isNew)
        entry->second = admin().makeWithSchema();
    return entry->second;
}

std::string emptyPostgresDatabase()
{
    return admin().makeEmpty();
}

std::string contentOf(const std::string &database)
{
    if (!testsPostgres())
        return readFile(database) + readFile(database + "-wal");
    const auto connection = connectPostgres(database, std::chrono::seconds{5});
    std::string content;
    for (const auto &table : connection->all<SingleColumn<std::string>>(postgresTablesSql))
        content += connection->value<std::string>(
            "SELECT COALESCE(STRING_AGG(CAST(t AS TEXT), ' '), '') FROM " + table.value + " t");
    return content;
}

void refuseWrites(Database &database, const std::string &event)
{
    database.write([&](Connection &connection) {
        if (!testsPostgres()) {
            connection.execute("CREATE TRIGGER refused AFTER " + event +
                               " BEGIN SELECT RAISE(FAIL, 'no'); END");
            return;
        }
        connection.execute("CREATE FUNCTION refused() RETURNS trigger LANGUAGE plpgsql AS"
                           " 'BEGIN RAISE EXCEPTION ''no''; END'");
        connection.execute("CREATE TRIGGER refused AFTER " + event +
                           " FOR EACH ROW EXECUTE FUNCTION refused()");
    });
}

WriteBlocker::WriteBlocker(const std::string &database)
{
    constexpr std::chrono::seconds patience{5};
    if (!testsPostgres()) {
        m_connection = std::make_unique<Connection>(database, static_cast<int>(patience.count()));
        m_connection->execute("BEGIN IMMEDIATE");
        return;
    }
    m_connection = connectPostgres(database, patience);
    m_connection->execute("BEGIN");
    for (const auto &table : m_connection->all<SingleColumn<std::string>>(postgresTablesSql))
        m_connection->execute("LOCK TABLE " + table.value + " IN EXCLUSIVE MODE");
}

WriteBlocker::~WriteBlocker() = default;

void WriteBlocker::end()
{
    m_connection->rollBack();
}

std::string onPostgres(const std::string &sql)
{
    return admin().run(sql);
}

} // namespace clockwell::server::test
