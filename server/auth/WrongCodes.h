#pragma once

#include "server/auth/Allowance.h"
#include "server/storage/Connection.h"

#include <string>

namespace clockwell::server {

/// The allowance of wrong codes of each e-mail address. In the database, for it must outlive a restart, and
/// no number of other addresses may push one out of it.
class WrongCodes
{
public:
    explicit WrongCodes(AllowanceLimits limits) : m_limits(limits) {}

    /// Spends `amount`, as part of the caller's transaction; false, with nothing spent, when less than one is
    /// there.
    bool spend(Connection &connection, const std::string &emailKey, double amount, Instant now) const;

    void giveBack(Connection &connection, const std::string &emailKey, double amount, Instant now) const;

    /// Removes a few rows that say nothing any more.
    void removeSome(Connection &connection, Instant now) const;

private:
    Spending spending(Connection &connection, const std::string &emailKey) const;
    void store(Connection &connection, const std::string &emailKey, const Spending &spending) const;

    AllowanceLimits m_limits;
};

} // namespace clockwell::server
