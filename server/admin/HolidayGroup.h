#pragma once

#include "server/admin/AdminOptions.h"

namespace CLI {
class App;
}

namespace clockwell::server {

/// Adds `holidays` with its commands to `admin`.
void addHolidayGroup(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                     const ChooseCommand &choose);

} // namespace clockwell::server
