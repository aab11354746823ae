#pragma once

#include "server/storage/Connection.h"
#include "server/storage/DatabaseError.h"
#include "server/storage/Turns.h"

#include <chrono>
#include <concepts>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace clockwell::server {

struct DatabaseOptions
{
    std::chrono::seconds patience{5};    ///< how long a request waits for its turn, and for other processes
    std::size_t readers = 4;             ///< connections for reading; more requests than that wait
    unsigned long long maximumBytes = 0; ///< the file never grows beyond this; 0 for no limit
};

/// Throws DatabaseError when others than the owner may read or write the file, or one that SQLite keeps
/// beside it.
void requirePrivate(const std::string &file);

/// The SQLite database: one connection that writes, some that read beside it, all in WAL mode with every
/// commit flushed to the disk. Safe on several threads.
class Database
{
public:
    /// Opens the file, making it when it is not there (readable by its owner only), and brings its schema up
    /// to date. Throws DatabaseError, also for a file that others may read.
    explicit Database(const std::string &file, DatabaseOptions options = {});

    /// Runs `work(Connection &)` in a transaction that is the only one that writes, from its first statement
    /// on. When this returns, everything is on the disk; when it throws, nothing is. `work` runs at most
    /// once. Throws DatabaseError of kind Busy when its turn, and that among other processes, does not come
    /// within the wait.
    template <std::invocable<Connection &> Work>
    auto write(const Wait &wait, Work work)
    {
        takeTurn(m_writing, wait);
        const Turn turn{m_writing};
        beginWriting(wait.until);
        return finish(m_writer, std::move(work));
    }
    template <std::invocable<Connection &> Work>
    auto write(Work work)
    {
        return write(ordinaryWait(), std::move(work));
    }

    /// Runs `work(Connection &)` on one unchanging view of the data, beside a writer if there is one.
    template <std::invocable<Connection &> Work>
    auto read(const Wait &wait, Work work)
    {
        takeTurn(m_reading, wait);
        const Turn turn{m_reading};
        const ReaderLease lease{*this};
        lease.connection().execute("BEGIN");
        return finish(lease.connection(), std::move(work));
    }
    template <std::invocable<Connection &> Work>
    auto read(Work work)
    {
        return read(ordinaryWait(), std::move(work));
    }

private:
    class ReaderLease
    {
    public:
        explicit ReaderLease(Database &database) : m_database(database), m_connection(database.takeReader())
        {}
        ~ReaderLease() { m_database.giveReader(m_connection); }
        ReaderLease(const ReaderLease &) = delete;
        ReaderLease &operator=(const ReaderLease &) = delete;
        Connection &connection() const { return *m_connection; }

    private:
        Database &m_database;
        Connection *m_connection;
    };

    /// Runs the work in the transaction that was begun, and ends it.
    template <class Work>
    static auto finish(Connection &connection, Work work)
    {
        try {
            if constexpr (std::is_void_v<std::invoke_result_t<Work, Connection &>>) {
                work(connection);
                connection.execute("COMMIT");
            } else {
                auto result = work(connection);
                connection.execute("COMMIT");
                return result;
            }
        } catch (...) {
            rollBack(connection);
            throw;
        }
    }

    static void rollBack(Connection &connection) noexcept;
    static void takeTurn(Turns &turns, const Wait &wait);
    Wait ordinaryWait() const { return {Wait::Clock::now() + m_options.patience, false}; }
    void prepareWriter();
    void beginWriting(Wait::Clock::time_point until);
    void openReaders(const std::string &file);
    Connection *takeReader();
    void giveReader(Connection *connection) noexcept;

    DatabaseOptions m_options;
    Turns m_writing{1};
    Turns m_reading;
    Connection m_writer;
    std::vector<std::unique_ptr<Connection>> m_readers;
    std::mutex m_readersLock; // guards m_freeReaders
    std::vector<Connection *> m_freeReaders;
};

} // namespace clockwell::server
