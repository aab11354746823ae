#pragma once

#include <boost/asio/ssl/context.hpp>

#include <memory>
#include <string>

namespace clockwell::server {

/// A server-side context for TLS 1.2 and 1.3 with forward-secret, authenticated cipher suites (RFC 9325).
/// Null when neither file is named. Throws std::runtime_error when only one is, or when they cannot be used.
std::unique_ptr<boost::asio::ssl::context> makeTlsContext(const std::string &certificateFile,
                                                          const std::string &privateKeyFile);

} // namespace clockwell::server
