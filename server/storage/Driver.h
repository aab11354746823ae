#pragma once

#include "server/storage/DatabaseError.h"

#include <soci/soci.h>

#include <chrono>

namespace clockwell::server {

/// What differs between the databases' own libraries, for one connection. Has no state, so it is safe on
/// several threads.
class Driver
{
public:
    virtual ~Driver() = default;

    virtual const soci::backend_factory &factory() const = 0;

    /// What the exception being handled means, if SOCI threw it; any other is thrown on. The text never has
    /// SOCI's context: that would carry the values of the parameters, and so into the log. `session`: null
    /// while there is none yet.
    virtual DatabaseError translated(soci::session *session) const = 0;

    /// Right after connecting.
    virtual void prepare(soci::session &session) const = 0;

    /// Whether a transaction can begin: the connection is there, and in no other transaction.
    virtual bool isReady(soci::session &session) const = 0;
    /// Whether a text may hold a NUL. If not, it would be cut off there.
    virtual bool takesNul() const = 0;
    /// Whether a prepared statement that failed can be deallocated only after its transaction: until then
    /// PostgreSQL refuses every command.
    virtual bool keepsFailedStatements() const = 0;

    /// Throws what translated() takes, or DatabaseError. `until`: when to give up the connection; only
    /// PostgreSQL heeds it, whose commit may wait for a standby.
    virtual void commit(soci::session &session, std::chrono::steady_clock::time_point until) const = 0;
};

const Driver &sqliteDriver();
const Driver &postgresDriver();

} // namespace clockwell::server
