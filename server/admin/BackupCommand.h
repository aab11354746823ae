#pragma once

#include "server/admin/AdminOptions.h"

namespace CLI {
class App;
}

namespace clockwell::server {

/// Adds `backup`: a copy of the database as it is at one moment, also while the server runs.
void addBackupCommand(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                      const ChooseCommand &choose);

} // namespace clockwell::server
