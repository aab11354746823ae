#include "server/admin/BackupCommand.h"

#include "server/admin/AdminDatabase.h"
#include "server/admin/AdminJson.h"
#include "server/admin/DatabaseCheck.h"
#include "server/admin/NewFile.h"

#include <CLI/CLI.hpp>

#include <cstdio>

namespace clockwell::server {

namespace {

struct BackupOptions
{
    std::shared_ptr<AdminOptions> common;
    std::string file;
    bool force = false;
};

/// Copies and checks the copy: that also finds damage which the running server has not met yet.
DatabaseContents copyChecked(const std::string &database, const std::string &unfinished)
{
    SqliteFile live{database};
    SqliteFile copy{unfinished};
    live.copyTo(copy);
    copy.execute("PRAGMA journal_mode = DELETE"); // one file that needs no companions to be read
    return requireSound(copy, "The database " + database);
}

void say(const BackupOptions &options, const DatabaseContents &contents)
{
    if (!options.common->json) {
        std::printf("Backed up %s to %s: %s.\n", options.common->database.c_str(), options.file.c_str(),
                    describe(contents).c_str());
        return;
    }
    Json object;
    object["file"] = options.file;
    addContents(object, contents);
    printJson(object);
}

void backUp(const BackupOptions &options)
{
    const std::string &database = requireDatabase(options.common->database);
    requireNoPartOf(database, options.file);
    requireNoCompanions(options.file);
    NewFile file{options.file, options.force ? NewFile::IfThere::Replace : NewFile::IfThere::Refuse};
    try {
        const DatabaseContents contents = copyChecked(database, file.unfinished());
        file.publish();
        say(options, contents);
    } catch (const DatabaseError &error) {
        throw std::runtime_error{"There is no backup: " + std::string{error.what()} + "."};
    }
}

} // namespace

void addBackupCommand(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                      const ChooseCommand &choose)
{
    CLI::App *command = admin.add_subcommand("backup", "Copy the database, also while the server runs");
    command->footer("Example: clockwell-server admin --database clockwell.db backup monday.db");
    const auto own = std::make_shared<BackupOptions>();
    own->common = options;
    command->add_option("FILE", own->file, "The new file")->required();
    command->add_flag("--force", own->force, "Replace the file if it is there");
    command->callback([=] { choose([=] { backUp(*own); }); });
}

} // namespace clockwell::server
