#include "server/admin/AdminError.h"
#include "server/admin/Move.h"
#include "server/admin/cli/Commands.h"
#include "server/admin/cli/Table.h"
#include "server/storage/PostgresUrl.h"

#include <CLI/CLI.hpp>

#include <cstdio>

namespace clockwell::server {

namespace {

struct MoveOptions
{
    std::shared_ptr<AdminOptions> common;
    std::string url;
};

std::string targetProblem(const std::string &url)
{
    return isPostgresUrl(url) ? postgresUrlProblem(url)
                              : "it has to be a URL of PostgreSQL, such as postgresql://USER@HOST/NAME";
}

void printMoved(const MoveOptions &options, const Moved &moved)
{
    const std::string label = databaseLabel(options.url);
    std::printf("Moved %s to %s: %s. All tables are the same in both:\n\n", options.common->database.c_str(),
                label.c_str(), describe(moved.contents).c_str());
    std::vector<std::vector<std::string>> rows;
    rows.reserve(moved.tables.size());
    for (const Moved::Table &table : moved.tables)
        rows.push_back({table.name, std::to_string(table.rows), "same"});
    std::fputs(tableText({"TABLE", "ROWS", "COMPARED"}, rows).c_str(), stdout);
    const std::string next = holdsPassword(options.url) ? "the same URL in CLOCKWELL_DATABASE"
                                                        : "--database '" + options.url + "'";
    std::printf("\nNow start the server with %s. The file %s is unchanged, and no longer used.\n",
                next.c_str(), options.common->database.c_str());
}

void printMovedJson(const MoveOptions &options, const Moved &moved)
{
    Json object;
    object["from"] = options.common->database;
    object["to"] = databaseLabel(options.url);
    addContents(object, moved.contents);
    object["tables"] = Json::array();
    for (const Moved::Table &table : moved.tables) {
        Json one;
        one["name"] = table.name;
        one["rows"] = table.rows;
        one["same"] = true; // else there is an error instead
        object["tables"].push_back(one);
    }
    printJson(object);
}

void moveAndSay(const MoveOptions &options)
{
    if (isPostgresUrl(options.common->database))
        throw refused(
            "A database of PostgreSQL is not moved by this program: --database has to be a SQLite file.");
    const Moved moved = moveToPostgres(options.common->database, options.url, options.common->as);
    options.common->json ? printMovedJson(options, moved) : printMoved(options, moved);
}

} // namespace

void addMoveCommand(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                    const ChooseCommand &choose)
{
    CLI::App *command = admin.add_subcommand(
        "move", "Copy a SQLite database into an empty one of PostgreSQL; stop the server before");
    command->footer("Example: clockwell-server admin --database clockwell.db move --to "
                    "postgresql://clockwell@db.example.org/clockwell");
    const auto own = std::make_shared<MoveOptions>();
    own->common = options;
    command->add_option("--to", own->url, "The URL of the empty database")
        ->envname("CLOCKWELL_MOVE_TO")
        ->required()
        ->type_name("URL")
        ->check(targetProblem);
    command->callback([=] { choose([=] { moveAndSay(*own); }); });
}

} // namespace clockwell::server
