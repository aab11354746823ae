#include "server/storage/Connection.h"

#include "server/storage/DatabaseError.h"

namespace clockwell::server {

Connection::Connection(const std::string &file, int busySeconds, Access access)
    : Connection(sqliteDriver(), "dbname=\"" + file + "\" timeout=" + std::to_string(busySeconds) +
                                     (access == Access::ReadOnly ? " readonly=1" : ""))
{}

Connection::Connection(const Driver &driver, const std::string &connectText)
try : m_driver(driver), m_session(driver.factory(), connectText) {
    driver.prepare(m_session);
} catch (...) {
    throw driver.translated(nullptr);
}

soci::statement &Connection::prepared(const std::string &sql)
{
    const auto known = m_statements.find(sql);
    if (known != m_statements.end())
        return known->second;
    soci::statement statement{m_session};
    statement.alloc();
    statement.prepare(sql);
    return m_statements.emplace(sql, statement).first->second;
}

/// The statement may be in the middle of its rows.
void Connection::giveUp(const std::string &sql)
{
    auto statement = m_statements.extract(sql);
    if (statement && m_driver.keepsFailedStatements())
        m_failed.push_back(std::move(statement));
}

void Connection::rethrow()
{
    const DatabaseError error = m_driver.translated(&m_session);
    m_isLost = m_isLost || error.kind() == DatabaseError::Kind::Lost;
    throw error;
}

void Connection::commit(std::chrono::steady_clock::time_point until)
{
    using Kind = DatabaseError::Kind;
    try {
        m_driver.commit(m_session, until);
    } catch (const DatabaseError &error) {
        if (error.kind() != Kind::Lost)
            throw;
        m_isLost = true;
        throw DatabaseError{Kind::Unconfirmed, error.what(), error.sqlstate()};
    } catch (...) {
        rethrow();
    }
}

void Connection::rollBack() noexcept
{
    try {
        execute("ROLLBACK");
    } catch (const DatabaseError &) { // NOLINT(bugprone-empty-catch): SQLite has already rolled back by
                                      // itself, or isReady() says that the connection is of no more use
    }
    m_failed.clear();
}

bool Connection::isReady()
{
    return !m_isLost && m_driver.isReady(m_session);
}

} // namespace clockwell::server
