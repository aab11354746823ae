#pragma once

#include "TempFolder.h"

#include <memory>
#include <string>

namespace clockwell::server {
class Connection;
class Database;
} // namespace clockwell::server

namespace clockwell::server::test {

/// Whether databases are of PostgreSQL: when CLOCKWELL_TEST_POSTGRES is the URL of a server of it to make
/// them in, as a superuser.
bool testsPostgres();

/// The name of a database for one test: a file in the folder, or the URL of a database that goes with this
/// process. It is the same one for the same name. With PostgreSQL it has the schema already.
std::string databaseIn(const TempFolder &folder, const std::string &name = "clockwell.db");

/// The URL of an empty database of PostgreSQL that goes with this process.
std::string emptyPostgresDatabase();

/// Runs a statement on the server of PostgreSQL, outside of any database of a test; returns the first column
/// of the first row, if there is one.
std::string onPostgres(const std::string &sql);

/// All rows of all tables, in a form in which texts can be found; of a SQLite file its bytes.
std::string contentOf(const std::string &database);

/// Makes statements fail halfway; `event` is like "INSERT ON audit". Only the end of the transaction can take
/// out again what SQLite has done of them by then.
void refuseWrites(Database &database, const std::string &event);

/// Another program that writes and does not come to an end: nobody else can write, but everybody can read.
class WriteBlocker
{
public:
    explicit WriteBlocker(const std::string &database);
    ~WriteBlocker();
    WriteBlocker(const WriteBlocker &) = delete;
    WriteBlocker &operator=(const WriteBlocker &) = delete;

    void end();

private:
    std::unique_ptr<Connection> m_connection;
};

} // namespace clockwell::server::test
