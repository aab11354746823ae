#pragma once

#include <functional>
#include <memory>

namespace CLI {
class App;
}

namespace clockwell::server {

/// Adds `admin` with all its groups to the program's command line. After parsing, `run` is the command that
/// was asked for; it returns the exit code: 0, 1 when refused, 3 when there is nothing of that name. It
/// throws std::exception for failures of the database. `run` has to outlive the parsing.
void addAdmin(CLI::App &app, std::function<int()> &run);

} // namespace clockwell::server
