#include "server/admin/Restoration.h"

#include "server/admin/AdminDatabase.h"
#include "server/admin/AdminError.h"
#include "server/admin/Audit.h"
#include "server/storage/Connection.h"
#include "server/storage/DatabaseError.h"

#include <algorithm>
#include <filesystem>

namespace clockwell::server {

namespace {

bool isThere(const std::string &file)
{
    std::error_code ignored;
    return std::filesystem::exists(std::filesystem::symlink_status(file, ignored));
}

std::string resolved(const std::string &file)
{
    std::error_code ignored;
    const auto real = std::filesystem::canonical(file, ignored);
    return real.empty() ? file : real.string();
}

/// "20260501T091530123Z"
std::string stampOf(Instant now)
{
    std::string text = toIsoText(now);
    std::erase_if(text, [](char c) { return c == '-' || c == ':' || c == '.'; });
    return text;
}

constexpr const char *moveAway = " Move it away, with its companions -wal and -shm, and restore again.";

/// Only a database of this program is ever replaced.
void requireReplaceable(const std::string &database)
{
    try {
        requireDatabase(database);
    } catch (const DatabaseError &error) { // it is one, but others may read it
        throw refused(error.what());
    } catch (const std::runtime_error &error) {
        throw refused(error.what() + std::string{moveAway});
    }
}

/// Holds the database alone until the file is closed, and without a write-ahead log, past which its contents
/// are replaced.
void takeAlone(SqliteFile &live, const std::string &database)
{
    try {
        if (live.holdAlone() && live.value("PRAGMA journal_mode = DELETE") == "delete")
            return;
    } catch (const DatabaseError &error) {
        if (error.kind() == DatabaseError::Kind::Damaged)
            throw refused("The database " + database + " is too damaged to be replaced: " + error.what() +
                          "." + moveAway);
        throw;
    }
    throw refused(
        "The database " + database +
        " is in use by a server or another program. Stop it, then restore again. Nothing was changed.");
}

/// Ends all sessions and codes and enters the restoration into the audit.
void makeReady(Connection &connection, const AuditedChange &restoration, const std::optional<std::string> &as)
{
    for (const char *table : {"codes", "access_tokens", "refresh_tokens", "token_families"})
        connection.execute(std::string{"DELETE FROM "} + table);
    Audit{connection, as}.add(restoration);
}

} // namespace

Restoration::Restoration(std::string database, std::string backup, const std::optional<std::string> &as)
    : m_database(resolved(database)),
      m_backup(std::move(backup)),
      m_replaces(isThere(m_database)),
      m_prepared(m_database, m_replaces ? NewFile::IfThere::Replace : NewFile::IfThere::Refuse)
{
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(m_backup, ignored))
        throw refused("There is no backup " + m_backup + ".");
    if (m_replaces)
        requireReplaceable(m_database);
    else
        requireNoCompanions(m_database);
    requireNoPartOf(m_database, m_backup);
    prepare(as);
}

void Restoration::prepare(const std::optional<std::string> &as)
{
    const std::string name = "The backup " + m_backup;
    try {
        SqliteFile backup{m_backup};
        m_contents = copyChecked(backup, m_prepared.unfinished(), name);
        Json restored;
        restored["backup"] = m_backup;
        addContents(restored, m_contents);
        const AuditedChange change{"restore", m_database, "", std::nullopt, nullptr, restored};
        bringUpToDate(m_prepared.unfinished(),
                      [&](Connection &connection) { makeReady(connection, change, as); });
    } catch (const DatabaseError &error) {
        throw refused(name + " cannot be used: " + error.what() + ". Nothing was changed.");
    }
}

std::optional<std::string> Restoration::finish(Instant now)
{
    try {
        if (m_replaces)
            return keepAndReplace(now);
        m_prepared.publish();
        return std::nullopt;
    } catch (const DatabaseError &error) {
        throw std::runtime_error{"Nothing was changed: " + std::string{error.what()} + "."};
    }
}

std::string Restoration::keepAndReplace(Instant now)
{
    SqliteFile live{m_database};
    takeAlone(live, m_database);
    const std::string keptAs = m_database + ".before-restore-" + stampOf(now);
    NewFile kept{keptAs, NewFile::IfThere::Refuse};
    {
        SqliteFile copy{kept.unfinished()};
        live.copyTo(copy);
    }
    kept.publish();
    SqliteFile prepared{m_prepared.unfinished()};
    // Into the file that is there, not by renaming: a server that is being started right now waits for this
    // file, and would go on with the old one if another took its name.
    try {
        prepared.copyTo(live);
    } catch (const DatabaseError &error) {
        throw std::runtime_error{"Nothing was changed: " + std::string{error.what()} +
                                 ". A copy of the database is in " + keptAs + "."};
    }
    return keptAs;
}

} // namespace clockwell::server
