#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace clockwell::server {

/// The options that all administration commands share.
struct AdminOptions
{
    std::string database;          ///< file name
    std::optional<std::string> as; ///< e-mail address of the administrator who acts
    bool json = false;             ///< print for scripts
};

/// Takes what the chosen command does; called while the command line is read.
using ChooseCommand = std::function<void(std::function<void()> command)>;

// Each adds one command, or a group of them, to `admin`.

void addAuditCommand(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                     const ChooseCommand &choose);
void addBackupCommand(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                      const ChooseCommand &choose);
void addCompanyCommands(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                        const ChooseCommand &choose);
void addDayCommands(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                    const ChooseCommand &choose);
void addEmployeeCommands(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                         const ChooseCommand &choose);
void addHolidayCommands(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                        const ChooseCommand &choose);
void addLeaveCommands(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                      const ChooseCommand &choose);
void addMoveCommand(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                    const ChooseCommand &choose);
void addOfficeCommands(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                       const ChooseCommand &choose);
void addReportCommand(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                      const ChooseCommand &choose);
void addRestoreCommand(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                       const ChooseCommand &choose);

} // namespace clockwell::server
