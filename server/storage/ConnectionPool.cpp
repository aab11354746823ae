#include "server/storage/ConnectionPool.h"

#include "server/storage/DatabaseError.h"

namespace clockwell::server {

ConnectionPool::ConnectionPool(std::size_t size, Open open)
    : m_open(std::move(open)), m_size(size), m_turns(size), m_free(size)
{}

std::size_t ConnectionPool::inUse()
{
    const std::lock_guard lock{m_lock};
    return m_size - m_free.size();
}

void ConnectionPool::openAll()
{
    for (auto &connection : m_free)
        connection = m_open();
}

Turns &ConnectionPool::takeTurn(const Wait &wait)
{
    if (!m_turns.take(wait))
        throw DatabaseError{DatabaseError::Kind::Busy, "no connection to the database became free in time"};
    return m_turns;
}

ConnectionPool::Lease::Lease(ConnectionPool &pool, const Wait &wait)
    : m_pool(pool), m_turn(pool.takeTurn(wait))
{
    const std::lock_guard lock{m_pool.m_lock};
    m_connection = std::move(m_pool.m_free.back()); // there is one for each turn
    m_pool.m_free.pop_back();
}

ConnectionPool::Lease::~Lease()
{
    if (m_connection && !m_connection->isReady())
        m_connection.reset();
    const std::lock_guard lock{m_pool.m_lock};
    m_pool.m_free.push_back(std::move(m_connection)); // never grows beyond its first size
}

Connection &ConnectionPool::Lease::connection()
{
    if (m_connection && !m_connection->isReady())
        m_connection.reset();
    if (!m_connection)
        m_connection = m_pool.m_open();
    return *m_connection;
}

} // namespace clockwell::server
