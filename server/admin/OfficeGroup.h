#pragma once

#include "server/admin/AdminOptions.h"

namespace CLI {
class App;
}

namespace clockwell::server {

/// Adds `offices` with its commands to `admin`.
void addOfficeGroup(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                    const ChooseCommand &choose);

} // namespace clockwell::server
