#include "server/admin/AdminDatabase.h"

#include <filesystem>

namespace clockwell::server {

namespace {

constexpr int BusySeconds = 5;

const std::string &existing(const std::string &file)
{
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(file, ignored))
        throw std::runtime_error{"There is no database " + file +
                                 ". Administration works on one that `serve` or `demo` has made."};
    long long tables = 0;
    try {
        tables = Connection{file, BusySeconds}.value<long long>(
            "SELECT COUNT(*) FROM sqlite_master WHERE type = 'table' AND name = 'schema_migrations'");
    } catch (const DatabaseError &error) {
        throw std::runtime_error{"The database " + file + " cannot be used: " + error.what() + "."};
    }
    if (tables == 0)
        throw std::runtime_error{"The file " + file + " is not a database of clockwell-server."};
    return file;
}

DatabaseOptions oneReader()
{
    DatabaseOptions options;
    options.readers = 1;
    return options;
}

} // namespace

AdminDatabase::AdminDatabase(const std::string &file) : m_database(existing(file), oneReader()) {}

} // namespace clockwell::server
