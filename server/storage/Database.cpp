#include "server/storage/Database.h"

#include "server/storage/Migrations.h"

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

int secondsOf(const DatabaseOptions &options)
{
    return static_cast<int>(options.patience.count());
}

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
        throw DatabaseError{kindOfOpenFailure(reason),
                            "The database " + file + " cannot be opened: " + reason.message() + "."};
    }
    ::close(descriptor);
    return file;
}

} // namespace

void requirePrivate(const std::string &file)
{
    std::error_code ignored;
    const auto real = std::filesystem::canonical(file, ignored); // the companions stand beside that
    for (const char *suffix : {"", "-wal", "-shm", "-journal"}) {
        const std::string name = real.string() + suffix;
        struct stat facts
        {};
        if (::stat(name.c_str(), &facts) == 0 && (facts.st_mode & (S_IRWXG | S_IRWXO)) != 0)
            throw DatabaseError{
                DatabaseError::Kind::Exposed,
                "The file " + name +
                    " of the database can be read or written by others than its owner; it holds"
                    " password hashes and attendance. Try: chmod 600 " +
                    name};
    }
}

Database::Database(const std::string &file, DatabaseOptions options)
    : m_options(options), m_reading(options.readers), m_writer(madePrivate(file), secondsOf(options))
{
    using Kind = DatabaseError::Kind;
    try {
        m_writer.value<long long>("PRAGMA schema_version"); // whether it is a database at all
        requirePrivate(file);
        prepareWriter();
        openReaders(file);
    } catch (const DatabaseError &error) {
        if (error.kind() == Kind::Newer || error.kind() == Kind::Exposed)
            throw; // says all in its own words
        throw DatabaseError{error.kind(), "The database " + file + " cannot be used: " + error.what() + "."};
    }
}

void Database::prepareWriter()
{
    if (m_writer.value<std::string>("PRAGMA journal_mode = WAL") != "wal")
        throw DatabaseError{DatabaseError::Kind::Unusable, "it cannot be switched to write-ahead logging"};
    m_writer.execute("PRAGMA synchronous = FULL");
    m_writer.execute("PRAGMA foreign_keys = ON");
    if (m_options.maximumBytes > 0) {
        const auto pageBytes = m_writer.value<long long>("PRAGMA page_size");
        const auto pages = m_options.maximumBytes / static_cast<unsigned long long>(pageBytes);
        // It answers with a row. Unread, that would keep the statement open, and tables from being changed.
        m_writer.value<long long>("PRAGMA max_page_count = " + std::to_string(std::max(pages, 1ULL)));
    }
    m_writer.execute("PRAGMA busy_timeout = " + std::to_string(lockTry.count()));
    write([](Connection &connection) { migrate(connection); });
}

/// Tries in slices, for SQLite waits for a lock always equally long.
void Database::beginWriting(Wait::Clock::time_point until)
{
    while (true) {
        try {
            m_writer.execute("BEGIN IMMEDIATE");
            return;
        } catch (const DatabaseError &error) {
            if (error.kind() != DatabaseError::Kind::Busy || Wait::Clock::now() >= until)
                throw;
        }
    }
}

void Database::openReaders(const std::string &file)
{
    for (std::size_t i = 0; i < m_options.readers; ++i) {
        m_readers.push_back(std::make_unique<Connection>(file, secondsOf(m_options)));
        m_readers.back()->execute("PRAGMA query_only = ON");
        m_freeReaders.push_back(m_readers.back().get());
    }
}

void Database::rollBack(Connection &connection) noexcept
{
    try {
        connection.execute("ROLLBACK");
    } catch (
        const DatabaseError &) { // NOLINT(bugprone-empty-catch): SQLite has already rolled back by itself
    }
}

void Database::takeTurn(Turns &turns, const Wait &wait)
{
    if (!turns.take(wait))
        throw DatabaseError{DatabaseError::Kind::Busy, "no connection to the database became free in time"};
}

Connection *Database::takeReader()
{
    const std::lock_guard lock{m_readersLock};
    Connection *connection = m_freeReaders.back(); // there is one for each turn
    m_freeReaders.pop_back();
    return connection;
}

void Database::giveReader(Connection *connection) noexcept
{
    const std::lock_guard lock{m_readersLock};
    m_freeReaders.push_back(connection); // never grows beyond its first size, so never allocates
}

} // namespace clockwell::server
