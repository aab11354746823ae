#pragma once

#include "server/storage/DatabaseError.h"

#include <soci/soci.h>

#include <chrono>

namespace clockwell::server {

/// What the libraries of the database engines do differently on one connection. Without a state of its own,
/// so safe on several threads.
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
    /// Whether a text may hold a NUL; one that may not would be cut off there.
    virtual bool takesNul() const = 0;
    /// Whether a statement that failed may only be given up after its transaction: before, the database
    /// refuses to forget it.
    virtual bool keepsFailedStatements() const = 0;

    /// Ends the transaction. Throws what translated() takes, or DatabaseError. `until`: when it gives up the
    /// connection, where others decide how long the end takes.
    virtual void commit(soci::session &session, std::chrono::steady_clock::time_point until) const = 0;
};

const Driver &sqliteDriver();
const Driver &postgresDriver();

} // namespace clockwell::server
