#include "server/admin/RestoreCommand.h"

#include "server/admin/AdminError.h"
#include "server/admin/AdminJson.h"
#include "server/admin/Restoration.h"

#include <CLI/CLI.hpp>

#include <cstdio>

namespace clockwell::server {

namespace {

struct RestoreOptions
{
    std::shared_ptr<AdminOptions> common;
    std::string file;
    bool yes = false;
};

void say(const RestoreOptions &options, const DatabaseContents &contents,
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
    Restoration restoration{options.common->database, options.file, options.common->as};
    if (restoration.replaces() && !options.yes)
        throw AdminError{AdminError::Kind::Refused,
                         "The backup is sound: " + describe(restoration.contents()) + ". It would replace " +
                             options.common->database + "; pass --yes to do that. Nothing was changed."};
    const auto keptAs = restoration.finish(systemClock()());
    say(options, restoration.contents(), keptAs);
}

} // namespace

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
