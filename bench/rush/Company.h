#pragma once

#include "server/auth/Sessions.h"
#include "server/storage/Database.h"

#include <optional>
#include <string>
#include <vector>

namespace clockwell::rush {

/// Somebody who has to check in.
struct Person
{
    std::string id;
    std::string email;
    std::string device;
    std::optional<server::TokenPair> tokens{}; ///< none: has to sign in
};

inline constexpr const char *rushPassword = "Rush-Hour-2026";

/// Adds a company to the database, whose day is open now: so many people with a session, nearly all with an
/// access token that expired five minutes ago, and behind them so many without. All have the password above.
/// A company is new each time, so that a database can be used again.
/// `oneFreshIn`: 1 for access tokens that are all fresh.
std::vector<Person> addCompany(server::Database &database, unsigned withSession, unsigned without,
                               unsigned oneFreshIn = 20);

} // namespace clockwell::rush
