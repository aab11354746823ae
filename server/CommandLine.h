#pragma once

namespace clockwell::server {

/// The whole program. Returns the exit code: 0, 1 for a failure, 2 for a wrong command line.
int runCommandLine(int argc, const char *const *argv);

} // namespace clockwell::server
