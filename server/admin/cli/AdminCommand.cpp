#include "server/admin/cli/AdminCommand.h"

#include "server/admin/AdminError.h"
#include "server/admin/cli/Commands.h"

#include <CLI/CLI.hpp>

#include <cstdio>

namespace clockwell::server {

namespace {

constexpr int exitRefused = 1;
constexpr int exitNotFound = 3;

int guarded(const std::function<void()> &command)
{
    try {
        command();
        return 0;
    } catch (const AdminError &error) {
        std::fprintf(stderr, "clockwell-server: %s\n", error.what());
        return error.kind() == AdminError::Kind::NotFound ? exitNotFound : exitRefused;
    }
}

/// The options of `admin` may stand behind every command, which CLI11 does not list there.
void nameCommonOptions(CLI::App &group)
{
    for (CLI::App *command : group.get_subcommands({})) {
        command->footer("Also: --database FILE|URL (or CLOCKWELL_DATABASE), --as EMAIL and --json, as for "
                        "admin itself\n" +
                        command->get_footer());
        nameCommonOptions(*command);
    }
}

} // namespace

void addAdmin(CLI::App &app, std::function<int()> &run)
{
    CLI::App *admin =
        app.add_subcommand("admin", "Manage employees, offices and more, also while the server runs");
    admin->require_subcommand(1)->fallthrough(); // what the groups inherit: options may stand behind them too
    admin->footer("Example: clockwell-server admin --database clockwell.db employees list --status pending\n"
                  "Exit codes: 0 done, 1 failed or refused, 2 wrong usage, 3 nothing of that name");
    const auto options = std::make_shared<AdminOptions>();
    admin
        ->add_option("--database", options->database,
                     "The SQLite file or the URL of PostgreSQL; it has to be there")
        ->envname("CLOCKWELL_DATABASE")
        ->required()
        ->type_name("FILE|URL");
    admin->add_option("--as", options->as, "The administrator who acts, for the audit")->type_name("EMAIL");
    admin->add_flag("--json", options->json, "Print JSON for scripts");
    const ChooseCommand choose = [&run](std::function<void()> command) {
        run = [command = std::move(command)] { return guarded(command); };
    };
    addEmployeeCommands(*admin, options, choose);
    addCompanyCommands(*admin, options, choose);
    addOfficeCommands(*admin, options, choose);
    addHolidayCommands(*admin, options, choose);
    addLeaveCommands(*admin, options, choose);
    addDayCommands(*admin, options, choose);
    addReportCommand(*admin, options, choose);
    addAuditCommand(*admin, options, choose);
    addBackupCommand(*admin, options, choose);
    addRestoreCommand(*admin, options, choose);
    addMoveCommand(*admin, options, choose);
    nameCommonOptions(*admin);
}

} // namespace clockwell::server
