#pragma once

#include "server/admin/AdminOptions.h"

namespace CLI {
class App;
}

namespace clockwell::server {

/// Adds `leave` with its commands to `admin`.
void addLeaveGroup(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                   const ChooseCommand &choose);

} // namespace clockwell::server
