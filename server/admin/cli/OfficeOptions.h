#pragma once

#include "server/admin/Offices.h"
#include "server/admin/cli/CommandParts.h"

namespace clockwell::server {

// The options of `offices add` and `offices edit`. `changes` have to outlive the parsing.

CLI::Option *addOfficeName(CLI::App &command, const std::string &name, const std::string &help,
                           OfficeChanges &changes);

/// All but the name. For a new office, place, time zone and hours are required and the help names what the
/// others are without being given.
void addOfficeOptions(CLI::App &command, OfficeChanges &changes, bool forNewOffice);

} // namespace clockwell::server
