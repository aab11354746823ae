#include "server/admin/cli/CommandParts.h"

#include "server/admin/cli/Table.h"

#include <cstdio>

namespace clockwell::server {

namespace {

std::string exampleOf(const CLI::App &group, const std::string &rest)
{
    return "Example: clockwell-server admin --database clockwell.db " + group.get_name() + rest;
}

} // namespace

CLI::App *addGroup(CLI::App &admin, const std::string &name, const std::string &help,
                   const std::string &example)
{
    CLI::App *group = admin.add_subcommand(name, help);
    group->require_subcommand(1);
    group->footer(exampleOf(*group, example));
    return group;
}

CLI::App *addCommand(CLI::App &group, const std::string &name, const std::string &help,
                     const std::string &example)
{
    CLI::App *command = group.add_subcommand(name, help);
    command->footer(exampleOf(group, " " + name + example));
    return command;
}

void printOutcome(const Outcome &outcome, const std::string &key, const Json &object, bool json)
{
    if (!json) {
        std::printf("%s\n", outcome.text.c_str());
        return;
    }
    Json whole;
    whole["changed"] = outcome.changed;
    whole["message"] = outcome.text;
    whole[key] = object;
    printJson(whole);
}

void printListing(const Listing &listing, bool json)
{
    if (json)
        return printJson(listing.objects);
    const std::string text =
        listing.rows.empty() ? listing.none + "\n" : tableText(listing.header, listing.rows);
    std::fputs(text.c_str(), stdout);
}

} // namespace clockwell::server
