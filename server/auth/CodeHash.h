#pragma once

#include "server/auth/Passwords.h"

#include <string>

namespace clockwell::server {

/// Argon2id of a code as 64 hexadecimal digits: six digits have no other protection. `salt` is any text; the
/// codes of one address that are under way share it, so that a guess costs one computation however many they
/// are. Throws std::bad_alloc.
std::string codeHash(const std::string &digits, const std::string &salt, PasswordCost cost);

} // namespace clockwell::server
