#pragma once

#include "server/admin/AdminOptions.h"

namespace CLI {
class App;
}

namespace clockwell::server {

/// Adds `days` with its commands to `admin`.
void addDayGroup(CLI::App &admin, const std::shared_ptr<AdminOptions> &options, const ChooseCommand &choose);

} // namespace clockwell::server
