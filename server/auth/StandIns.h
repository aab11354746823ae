#pragma once

#include "server/storage/Database.h"

#include <string>

namespace clockwell::server {

/// Gives every address without an account the hash of some account, to spend the time of a password check on.
/// Stored hashes differ in cost until everybody has signed in after a change of it, and so would the time of
/// a check tell a registered address from another. Safe on several threads.
class StandIns
{
public:
    /// `nobodysHash`: when there is no account yet.
    StandIns(Database &database, std::string nobodysHash);

    /// For one address always that of the same account, on all servers of a database and after a restart,
    /// which nobody outside can tell.
    std::string hashFor(Connection &connection, const std::string &account) const;

private:
    std::string m_nobodysHash;
    std::string m_key; // secret, random, the same as long as there is the database
};

} // namespace clockwell::server
