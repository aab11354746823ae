#pragma once

#include "server/admin/AdminOptions.h"

namespace CLI {
class App;
}

namespace clockwell::server {

/// Adds `report`: a month of attendance for spreadsheets and scripts.
void addReportCommand(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                      const ChooseCommand &choose);

} // namespace clockwell::server
