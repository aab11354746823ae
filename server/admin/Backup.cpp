#include "server/admin/Backup.h"

#include "server/admin/AdminDatabase.h"
#include "server/admin/AdminError.h"
#include "server/storage/DatabaseError.h"
#include "server/storage/Migrations.h"
#include "server/storage/NewFile.h"
#include "server/storage/Schema.h"

#include <algorithm>
#include <filesystem>

namespace clockwell::server {

namespace {

// Tables and indexes as the text that made them: a table of another program may have the same name.
constexpr const char *partsSql = "SELECT sql FROM sqlite_master WHERE sql IS NOT NULL ORDER BY sql";

std::vector<std::string> partsOf(long long version)
{
    SqliteFile model{":memory:"};
    for (long long i = 0; i < version; ++i)
        for (const std::string &statement : schemaSteps()[static_cast<std::size_t>(i)])
            model.execute(statement);
    return model.column(partsSql);
}

long long requireOwnSchema(SqliteFile &file, const std::string &name)
{
    const AdminError foreign = refused(name + " is not a database of clockwell-server.");
    if (file.number(
            "SELECT COUNT(*) FROM sqlite_master WHERE type = 'table' AND name = 'schema_migrations'") == 0)
        throw foreign;
    const long long version = file.number("SELECT COALESCE(MAX(version), 0) FROM schema_migrations");
    if (version > schemaVersion())
        throw refused(newerSchemaText(name, version));
    const auto found = file.column(partsSql);
    const auto expected = partsOf(std::max(version, 0LL));
    if (version < 1 || !std::includes(found.begin(), found.end(), expected.begin(), expected.end()))
        throw foreign;
    return version;
}

void requireIntact(SqliteFile &file, const std::string &name)
{
    const std::string verdict = file.value("PRAGMA integrity_check(1)");
    if (verdict != "ok")
        throw refused(name + " is damaged: " + verdict + ".");
    if (!file.column("PRAGMA foreign_key_check").empty())
        throw refused(name + " is damaged: rows refer to others that are not there.");
}

} // namespace

DatabaseContents requireSound(SqliteFile &file, const std::string &name)
{
    try {
        requireIntact(file, name);
        DatabaseContents contents;
        contents.schema = requireOwnSchema(file, name);
        contents.employees = file.number("SELECT COUNT(*) FROM employees");
        contents.attendanceDays = file.number("SELECT COUNT(*) FROM attendance");
        return contents;
    } catch (const DatabaseError &error) {
        if (error.kind() == DatabaseError::Kind::Damaged)
            throw refused(name + " is damaged or no database at all: " + error.what() + ".");
        throw;
    }
}

DatabaseContents copyChecked(SqliteFile &database, const std::string &file, const std::string &name)
{
    SqliteFile copy{file};
    database.copyTo(copy);
    copy.execute("PRAGMA journal_mode = DELETE");
    return requireSound(copy, name);
}

void bringUpToDate(const std::string &file, const std::function<void(Connection &)> &more)
{
    constexpr int busySeconds = 5;
    Connection connection{file, busySeconds};
    connection.execute("BEGIN IMMEDIATE");
    migrate(connection);
    more(connection);
    connection.execute("COMMIT");
}

void addContents(Json &object, const DatabaseContents &contents)
{
    object["schema"] = contents.schema;
    object["employees"] = contents.employees;
    object["attendanceDays"] = contents.attendanceDays;
}

std::string describe(const DatabaseContents &contents)
{
    return std::to_string(contents.employees) + (contents.employees == 1 ? " employee, " : " employees, ") +
           std::to_string(contents.attendanceDays) +
           (contents.attendanceDays == 1 ? " day of attendance" : " days of attendance");
}

void requireNoCompanions(const std::string &file)
{
    for (const char *suffix : sqliteCompanions) {
        std::error_code ignored;
        const std::string companion = file + suffix;
        if (std::filesystem::exists(std::filesystem::symlink_status(companion, ignored)))
            throw refused("There is a file " + companion +
                          ", which SQLite would take for a part of the new file. Move it away first.");
    }
}

DatabaseContents backUp(const std::string &database, const std::string &file, bool replace)
{
    requireDatabase(database);
    requireNoPartOf(database, file);
    requireNoCompanions(file);
    NewFile copyFile{file, replace ? NewFile::IfThere::Replace : NewFile::IfThere::Refuse};
    try {
        SqliteFile live{database};
        const DatabaseContents contents =
            copyChecked(live, copyFile.unfinished(), "The database " + database);
        copyFile.publish();
        return contents;
    } catch (const DatabaseError &error) {
        throw std::runtime_error{"There is no backup: " + std::string{error.what()} + "."};
    }
}

} // namespace clockwell::server
