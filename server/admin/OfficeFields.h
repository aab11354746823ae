#pragma once

#include "server/admin/OfficeChanges.h"

namespace clockwell::server {

// The options of `offices add` and `offices edit`. `wishes` has to outlive the parsing.

CLI::Option *addOfficeName(CLI::App &command, const std::string &name, const std::string &help,
                           OfficeWishes &wishes);

/// All but the name. For a new office, place, time zone and hours are required and the help names what the
/// others are without being given.
void addOfficeFields(CLI::App &command, OfficeWishes &wishes, bool forNewOffice);

} // namespace clockwell::server
