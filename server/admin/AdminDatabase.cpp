#include "server/admin/AdminDatabase.h"

#include "server/admin/AdminError.h"
#include "server/storage/PostgresEngine.h"
#include "server/storage/PostgresUrl.h"
#include "server/storage/SqliteEngine.h"
#include "server/storage/SqliteFile.h"

#include <filesystem>

namespace clockwell::server {

namespace {

constexpr std::chrono::seconds openTimeout{5};

DatabaseOptions oneReader()
{
    DatabaseOptions options;
    options.readers = 1;
    return options;
}

void requireFile(const std::string &file)
{
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(file, ignored))
        throw std::runtime_error{"There is no database " + file +
                                 ". Administration works on one that `serve` or `demo` has made."};
    Connection connection{file, static_cast<int>(openTimeout.count())};
    if (connection.value<long long>(
            "SELECT COUNT(*) FROM sqlite_master WHERE type = 'table' AND name = 'schema_migrations'") == 0)
        throw std::runtime_error{"The file " + file + " is not a database of clockwell-server."};
    requirePrivate(file);
}

void requirePostgres(const std::string &url)
{
    const auto connection = connectPostgres(url, openTimeout);
    const std::string sql = std::string{postgresTablesSql} + " AND table_name = 'schema_migrations'";
    if (!connection->first<SingleColumn<std::string>>(sql))
        throw std::runtime_error{
            "The database " + databaseLabel(url) +
            " is not one of clockwell-server. Administration works on one that `serve` or"
            " `demo` has made."};
}

} // namespace

const std::string &requireDatabase(const std::string &database)
{
    try {
        isPostgresUrl(database) ? requirePostgres(database) : requireFile(database);
    } catch (const DatabaseError &error) {
        if (error.kind() == DatabaseError::Kind::Exposed)
            throw;
        throw std::runtime_error{"The database " + databaseLabel(database) +
                                 " cannot be used: " + error.what() + "."};
    }
    return database;
}

AdminDatabase::AdminDatabase(const std::string &database) : m_database(requireDatabase(database), oneReader())
{}

void requireNoPartOf(const std::string &database, const std::string &file)
{
    if (isPostgresUrl(database))
        return;
    std::error_code ignored;
    // Made absolute first: of a bare name that is not there, nothing would be resolved.
    const auto target = std::filesystem::weakly_canonical(std::filesystem::absolute(file), ignored);
    const auto base = std::filesystem::weakly_canonical(std::filesystem::absolute(database), ignored);
    bool part =
        target == base || std::filesystem::equivalent(database, file, ignored); // also under another name
    for (const char *suffix : sqliteCompanions)
        part = part || target == base.string() + suffix;
    if (part)
        throw AdminError{AdminError::Kind::Refused, "The file " + file + " belongs to the database itself."};
}

} // namespace clockwell::server
