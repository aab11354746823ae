#include "server/admin/AdminError.h"
#include "server/admin/Restoration.h"
#include "server/admin/cli/Commands.h"
#include "server/storage/PostgresUrl.h"

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

struct RestoreOptions
{
    std::shared_ptr<AdminOptions> common;
    std::string file;
    bool yes = false;
};

/// PostgreSQL's own programs do this, and know all that belongs to a database of it.
void requireSqlite(const std::string &database, const std::string &command)
{
    if (isPostgresUrl(database))
        throw refused("A database of PostgreSQL is not in a file of this program. " + command);
}

void backUpAndSay(const BackupOptions &options)
{
    requireSqlite(options.common->database,
                  "Back it up with PostgreSQL's own program:\n  pg_dump --format=custom --file=FILE 'URL'");
    const DatabaseContents contents = backUp(options.common->database, options.file, options.force);
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

void sayRestored(const RestoreOptions &options, const DatabaseContents &contents,
                 const std::optional<std::string> &keptAs)
{
    if (options.common->json) {
        Json object;
        object["file"] = options.file;
        object["before"] = optionalJson(keptAs);
        addContents(object, contents);
        return printJson(object);
    }
    std::printf("Restored %s from %s: %s. Everybody has to sign in again.\n",
                options.common->database.c_str(), options.file.c_str(), describe(contents).c_str());
    if (keptAs)
        std::printf("The database as it was before is in %s.\n", keptAs->c_str());
}

void restore(const RestoreOptions &options)
{
    requireSqlite(options.common->database,
                  "Stop the servers, restore it with PostgreSQL's own programs into a new database, end the"
                  " sessions and codes of that time, and start the servers with the new database's URL:\n"
                  "  createdb --owner=ROLE --template=template0 --encoding=UTF8 NAME\n"
                  "  pg_restore --no-owner --single-transaction --dbname='URL' FILE\n"
                  "  psql --dbname='URL' --command="
                  "'TRUNCATE codes, access_tokens, refresh_tokens, token_families'");
    Restoration restoration{options.common->database, options.file, options.common->as};
    if (restoration.replaces() && !options.yes)
        throw refused("The backup is sound: " + describe(restoration.contents()) + ". It would replace " +
                      options.common->database + "; pass --yes to do that. Nothing was changed.");
    const auto keptAs = restoration.finish(systemClock()());
    sayRestored(options, restoration.contents(), keptAs);
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
    command->callback([=] { choose([=] { backUpAndSay(*own); }); });
}

void addRestoreCommand(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                       const ChooseCommand &choose)
{
    CLI::App *command =
        admin.add_subcommand("restore", "Put a backup in the place of the database; stop the server before");
    command->footer("Example: clockwell-server admin --database clockwell.db restore monday.db --yes");
    const auto own = std::make_shared<RestoreOptions>();
    own->common = options;
    command->add_option("FILE", own->file, "The backup")->required();
    command->add_flag("--yes", own->yes, "Replace the database that is there");
    command->callback([=] { choose([=] { restore(*own); }); });
}

} // namespace clockwell::server
