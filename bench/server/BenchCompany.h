#pragma once

#include "server/storage/Database.h"

#include <string>
#include <vector>

namespace clockwell::server::bench {

/// Adds the demonstration's organisation with so many further employees, who are signed in and have not
/// punched; returns their access tokens.
std::vector<std::string> signIn(Database &database, int count);

} // namespace clockwell::server::bench
