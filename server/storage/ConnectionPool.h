#pragma once

#include "server/storage/Connection.h"
#include "server/storage/Turns.h"

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace clockwell::server {

/// Connections that are lent to one thread each; who finds none free waits in turn. Safe on several threads.
class ConnectionPool
{
public:
    using Open = std::function<std::unique_ptr<Connection>()>;

    /// `open` makes the connections, when they are first needed and when one broke; on several threads.
    ConnectionPool(std::size_t size, Open open);

    /// Makes all connections now.
    void openAll();

    /// Connections that are lent now.
    std::size_t inUse();

    /// A connection while this object lives.
    class Lease
    {
    public:
        /// Throws DatabaseError of kind Busy when none becomes free in time.
        Lease(ConnectionPool &pool, const Wait &wait);
        ~Lease();
        Lease(const Lease &) = delete;
        Lease &operator=(const Lease &) = delete;

        /// Makes it if there is none, or if the last one cannot be used any more. Throws DatabaseError.
        Connection &connection();

    private:
        ConnectionPool &m_pool;
        const Turn m_turn; // ends after the connection was given back
        std::unique_ptr<Connection> m_connection;
    };

private:
    Turns &takeTurn(const Wait &wait);

    Open m_open;
    const std::size_t m_size;
    Turns m_turns;
    std::mutex m_lock;                               // guards the next
    std::vector<std::unique_ptr<Connection>> m_free; // one for each turn, null while there is none
};

} // namespace clockwell::server
