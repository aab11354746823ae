#pragma once

#include <string>
#include <string_view>

namespace clockwell::server {

/// A fresh bearer secret: 256 bits from the system's generator as 43 characters of base64url.
std::string newToken();

/// What the database keeps of a token: BLAKE2b-256 as 64 hexadecimal digits. The tokens are random, so no
/// salt or slow function is needed.
std::string tokenHash(std::string_view token);

/// A fresh identifier: a random UUID (version 4), lower case. Unique and not to be guessed, but not a secret.
std::string newId();

} // namespace clockwell::server
