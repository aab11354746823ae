#pragma once

#include "server/storage/Connection.h"

#include <string>

namespace clockwell::server {

/// The network address of PostgreSQL if this connection to it is not encrypted: libpq's default falls back to
/// that in silence. Empty if it is encrypted, or does not go over a network.
std::string unencryptedAddress(Connection &connection);

} // namespace clockwell::server
