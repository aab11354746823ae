#pragma once

#include "server/admin/AdminOptions.h"

namespace CLI {
class App;
}

namespace clockwell::server {

/// Adds `employees` with its commands to `admin`.
void addEmployeeGroup(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                      const ChooseCommand &choose);

} // namespace clockwell::server
