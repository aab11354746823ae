#include "server/storage/SqliteEngine.h"

#include "server/storage/DatabaseError.h"
#include "server/storage/SqliteFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

namespace clockwell::server {

namespace {

constexpr std::chrono::milliseconds lockTry{100}; // one try to get the lock from another process

DatabaseError::Kind kindOfOpenFailure(const std::error_code &reason)
{
    using Kind = DatabaseError::Kind;
    if (reason == std::errc::permission_denied || reason == std::errc::read_only_file_system)
        return Kind::ReadOnly;
    const bool full = reason == std::errc::no_space_on_device || reason.value() == EDQUOT;
    return full ? Kind::Full : Kind::Unusable;
}

/// SQLite would make the file readable by others, and gives its companions the same rights as the file.
const std::string &madePrivate(const std::string &file)
{
    const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor < 0) {
        const auto reason = std::error_code{errno, std::system_category()};
        throw DatabaseError{kindOfOpenFailure(reason), reason.message()};
    }
    ::close(descriptor);
    return file;
}

void requirePrivateFile(const std::string &name)
{
    struct stat facts
    {};
    if (::stat(name.c_str(), &facts) == 0 && (facts.st_mode & (S_IRWXG | S_IRWXO)) != 0)
        throw DatabaseError{DatabaseError::Kind::Exposed,
                            "The file " + name +
                                " of the database can be read or written by others than its owner; it holds"
                                " password hashes and attendance. Try: chmod 600 " +
                                name};
}

} // namespace

void requirePrivate(const std::string &file)
{
    std::error_code ignored;
    const std::string real = std::filesystem::canonical(file, ignored); // the companions stand beside that
    requirePrivateFile(real);
    for (const char *suffix : sqliteCompanions)
        requirePrivateFile(real + suffix);
}

std::unique_ptr<Connection> SqliteEngine::openWriter()
{
    auto writer = std::make_unique<Connection>(madePrivate(m_file), timeoutSeconds());
    writer->value<long long>("PRAGMA schema_version"); // whether it is a database at all
    requirePrivate(m_file);
    if (writer->value<std::string>("PRAGMA journal_mode = WAL") != "wal")
        throw DatabaseError{DatabaseError::Kind::Unusable, "it cannot be switched to write-ahead logging"};
    writer->execute("PRAGMA synchronous = FULL");
    writer->execute("PRAGMA foreign_keys = ON");
    limitSize(*writer);
    writer->execute("PRAGMA busy_timeout = " + std::to_string(lockTry.count()));
    return writer;
}

void SqliteEngine::limitSize(Connection &writer) const
{
    if (m_options.maximumBytes == 0)
        return;
    const auto pageBytes = writer.value<long long>("PRAGMA page_size");
    const auto pages = m_options.maximumBytes / static_cast<unsigned long long>(pageBytes);
    // It answers with a row. Unread, that would keep the statement open, and tables from being changed.
    writer.value<long long>("PRAGMA max_page_count = " + std::to_string(std::max(pages, 1ULL)));
}

std::unique_ptr<Connection> SqliteEngine::openReader()
{
    auto reader = std::make_unique<Connection>(m_file, timeoutSeconds());
    reader->execute("PRAGMA query_only = ON");
    return reader;
}

/// Tries in slices, for SQLite waits for a lock always equally long.
void SqliteEngine::beginWriting(Connection &connection, Wait::Clock::time_point until)
{
    while (true) {
        try {
            connection.execute("BEGIN IMMEDIATE");
            return;
        } catch (const DatabaseError &error) {
            if (error.kind() != DatabaseError::Kind::Busy || Wait::Clock::now() >= until)
                throw;
        }
    }
}

} // namespace clockwell::server
