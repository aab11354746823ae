#pragma once

namespace clockwell::server {

/// Makes libsodium ready; may be called any number of times on any thread. Throws std::runtime_error.
void requireSodium();

} // namespace clockwell::server
