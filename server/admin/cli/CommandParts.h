#pragma once

#include "server/admin/AdminJson.h"
#include "server/admin/Outcome.h"
#include "server/admin/Printable.h"

#include <CLI/CLI.hpp>

#include <optional>
#include <string>
#include <vector>

namespace clockwell::server {

// What the groups of administration commands are put together from.

/// A group that needs one of its commands. `example`: what stands behind the group's name, with a leading
/// blank.
CLI::App *addGroup(CLI::App &admin, const std::string &name, const std::string &help,
                   const std::string &example);

/// `example`: what stands behind the command's name, with a leading blank; may be empty.
CLI::App *addCommand(CLI::App &group, const std::string &name, const std::string &help,
                     const std::string &example);

/// Adds an option ("--name") or argument ("NAME") that `parse(std::string)` reads into `target`, which has to
/// outlive the parsing. A text for which `parse` returns nothing is wrong usage; `rule` says what is right,
/// as in "it has to be a date".
template <class Value, class Parse>
CLI::Option *addField(CLI::App &command, const std::string &name, const std::string &help,
                      std::optional<Value> &target, Parse parse, const std::string &rule)
{
    return command.add_option_function<std::string>(
        name,
        [&target, parse, name, rule](const std::string &text) {
            target = parse(text);
            if (!target)
                throw CLI::ValidationError(name, "\"" + printable(text) + "\" will not do: " + rule);
        },
        help);
}

/// Prints the sentence, or {"changed", "message", KEY: object}.
void printOutcome(const Outcome &outcome, const std::string &key, const Json &object, bool json);

/// A list in both of its forms.
struct Listing
{
    std::vector<std::string> header;
    std::vector<std::vector<std::string>> rows;
    Json objects = Json::array();
    std::string none; ///< the sentence for an empty list
};

void printListing(const Listing &listing, bool json);

} // namespace clockwell::server
