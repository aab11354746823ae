#pragma once

#include "server/admin/AdminOptions.h"

namespace CLI {
class App;
}

namespace clockwell::server {

/// Adds `restore`: puts a backup in the place of the database, while no server runs.
void addRestoreCommand(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                       const ChooseCommand &choose);

} // namespace clockwell::server
