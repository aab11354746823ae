#pragma once

namespace clockwell::server {

struct HttpOptions;

/// Raises the process's soft limit of descriptors for the connections that the options let in, as far as the
/// hard limit permits. Where that is too low, it says so in the log and lets in fewer; some descriptors are
/// kept for the database, the mail and the log.
void makeRoomForConnections(HttpOptions &options);

} // namespace clockwell::server
