#pragma once

#include "server/storage/ConnectionPool.h"
#include "server/storage/DatabaseError.h"
#include "server/storage/Engine.h"
#include "server/storage/Retries.h"
#include "server/storage/Turns.h"

#include <algorithm>
#include <concepts>
#include <memory>
#include <string>

namespace clockwell::server {

/// The database: a SQLite file, or one of PostgreSQL that several servers share. Safe on several threads.
class Database
{
public:
    /// `database`: a file or a URL, see engineFor(). Brings its schema up to date, or waits until another
    /// server has. Throws DatabaseError, also for a file that others may read.
    explicit Database(const std::string &database, DatabaseOptions options = {});

    /// Runs `work(Connection &)` in a transaction that writes as if it were the only one. When this returns,
    /// everything is on the disk; when it throws, nothing is, unless the error is of kind Unconfirmed.
    ///
    /// On PostgreSQL `work` may run more than once: after a conflict with other transactions, and when the
    /// connection broke before the end. So it does nothing but SQL and setting what it is to return: no
    /// e-mail, no log, no counting, no moving out of what it captured.
    ///
    /// Throws DatabaseError of kind Busy when `wait` ends before a connection is free, or before the
    /// transaction ends without a conflict.
    template <std::invocable<Connection &> Work>
    auto write(const Wait &wait, Work work)
    {
        return transact(m_writer ? *m_writer : *m_readers, &Engine::beginWriting, wait, work);
    }
    template <std::invocable<Connection &> Work>
    auto write(Work work)
    {
        return write(ordinaryWait(), std::move(work));
    }

    /// Runs `work(Connection &)` on one snapshot of the data, beside transactions that write. It, too, may
    /// run more than once.
    template <std::invocable<Connection &> Work>
    auto read(const Wait &wait, Work work)
    {
        return transact(*m_readers, &Engine::beginReading, wait, work);
    }
    template <std::invocable<Connection &> Work>
    auto read(Work work)
    {
        return read(ordinaryWait(), std::move(work));
    }

    /// For reading, and on PostgreSQL for writing too.
    std::size_t connections() const { return m_engine->connections(); }
    std::size_t connectionsInUse() { return m_readers->inUse(); } ///< of these

private:
    using Begin = void (Engine::*)(Connection &, Wait::Clock::time_point);

    template <class Work>
    auto transact(ConnectionPool &pool, Begin begin, const Wait &wait, Work &work)
    {
        ConnectionPool::Lease lease{pool, wait};
        for (Retries retries{wait, m_retryTurns};;) {
            try {
                Connection &connection = lease.connection();
                (*m_engine.*begin)(connection, wait.until);
                return finish(connection, work, wait);
            } catch (const DatabaseError &error) {
                retries.pauseOrThrow(error);
                if (m_options.onRetry && !error.sqlstate().empty())
                    m_options.onRetry(error.sqlstate());
            }
        }
    }

    /// Runs the work in the transaction that was begun, and ends it.
    template <class Work>
    auto finish(Connection &connection, Work &work, const Wait &wait)
    {
        const auto commit = [&] {
            connection.commit(std::max(wait.until, Wait::Clock::now() + m_options.longestCommit));
        };
        try {
            if constexpr (std::is_void_v<std::invoke_result_t<Work &, Connection &>>) {
                work(connection);
                commit();
            } else {
                auto result = work(connection);
                commit();
                return result;
            }
        } catch (...) {
            connection.rollBack();
            throw;
        }
    }

    Wait ordinaryWait() const { return {Wait::Clock::now() + m_options.timeout, false}; }
    void bringUpToDate();

    DatabaseOptions m_options;
    Turns m_retryTurns{1}; // after conflicts, one transaction is retried at a time
    std::unique_ptr<Engine> m_engine;
    std::unique_ptr<ConnectionPool> m_writer; // null when those of m_readers write as well
    std::unique_ptr<ConnectionPool> m_readers;
};

} // namespace clockwell::server
