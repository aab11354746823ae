#include "server/admin/AdminDatabase.h"

#include "server/admin/AdminError.h"

#include <filesystem>

namespace clockwell::server {

namespace {

constexpr int busySeconds = 5;

DatabaseOptions oneReader()
{
    DatabaseOptions options;
    options.readers = 1;
    return options;
}

} // namespace

const std::string &requireDatabase(const std::string &file)
{
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(file, ignored))
        throw std::runtime_error{"There is no database " + file +
                                 ". Administration works on one that `serve` or `demo` has made."};
    long long tables = 0;
    try {
        tables = Connection{file, busySeconds}.value<long long>(
            "SELECT COUNT(*) FROM sqlite_master WHERE type = 'table' AND name = 'schema_migrations'");
    } catch (const DatabaseError &error) {
        throw std::runtime_error{"The database " + file + " cannot be used: " + error.what() + "."};
    }
    if (tables == 0)
        throw std::runtime_error{"The file " + file + " is not a database of clockwell-server."};
    requirePrivate(file);
    return file;
}

AdminDatabase::AdminDatabase(const std::string &file) : m_database(requireDatabase(file), oneReader()) {}

void requireNoPartOf(const std::string &database, const std::string &file)
{
    std::error_code ignored;
    // Made absolute first: of a bare name that is not there, nothing would be resolved.
    const auto target = std::filesystem::weakly_canonical(std::filesystem::absolute(file), ignored);
    const auto base = std::filesystem::weakly_canonical(std::filesystem::absolute(database), ignored);
    bool part = std::filesystem::equivalent(database, file, ignored); // also under another name
    for (const char *suffix : {"", "-wal", "-shm", "-journal"})
        part = part || target == base.string() + suffix;
    if (part)
        throw AdminError{AdminError::Kind::Refused, "The file " + file + " belongs to the database itself."};
}

} // namespace clockwell::server
