#pragma once

#include <string>

namespace clockwell::server {

/// The network address of the database if the connection to it is not encrypted: libpq's default falls back
/// to that in silence. Empty if it is, or is no network connection. Makes a connection to look at; empty as
/// well when there can be none.
std::string unencryptedAddress(const std::string &url);

} // namespace clockwell::server
