#include "RushOptions.h"

#include "ServerUrl.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace clockwell::rush {

namespace {

constexpr int wrongUsage = 2;
constexpr unsigned mostPeople = 50'000;
constexpr unsigned mostSeconds = 3600;

std::string urlProblem(const std::string &text)
{
    return parseServerUrl(text) ? ""
                                : "\"" + text + "\" is not of the form http://127.0.0.1:PORT; only loopback";
}

void addPhones(CLI::App &app, RushOptions &options)
{
    app.add_option("--phones", options.phones, "Phones with a session from yesterday")
        ->check(CLI::Range(0U, mostPeople));
    app.add_option("--seconds", options.seconds, "They arrive within this time, each at a random moment")
        ->check(CLI::Range(1U, mostSeconds));
    app.add_option("--addresses", options.addresses,
                   "Network addresses of phones and sign-ins; 0: each has its own")
        ->check(CLI::Range(0U, mostPeople));
    app.add_flag("--keep-alive,!--no-keep-alive", options.keepAlive,
                 "Keep a phone's connection for its next GET (the default), or not");
    app.add_option("--sign-ins", options.signIns, "People beside them who sign in with their password")
        ->check(CLI::Range(0U, mostPeople));
    app.add_option("--sign-in-seconds", options.signInSeconds, "They arrive within this time")
        ->check(CLI::Range(1U, mostSeconds));
    app.add_option("--patience", options.patience, "Seconds after which a person gives up")
        ->check(CLI::Range(1U, mostSeconds));
}

void addTrouble(CLI::App &app, RushOptions &options)
{
    app.add_option("--stranger-sign-ins", options.strangerSignIns,
                   "Sign-ins a second with wrong passwords and unknown accounts, from one address")
        ->check(CLI::Range(0U, 1000U));
    app.add_option("--idle", options.idle, "Connections that are opened first, and held")
        ->check(CLI::Range(0U, mostPeople));
    app.add_option("--kill-after", options.killAfter,
                   "Kill the server after so many seconds, and start it again; 0: never")
        ->check(CLI::Range(0U, mostSeconds));
}

void addExpectations(CLI::App &app, RushOptions &options)
{
    app.add_flag("--no-failures", options.flawless,
                 "Exit status 1 as well if any request fails, other than with an expired token");
    app.add_option("--most-repeats", options.mostRepeats,
                   "Exit status 1 as well if anybody has to tap the button again more often");
    app.add_option("--acknowledged", options.acknowledged,
                   "Write who was told what about their punch, a line each: id, kind, check-in, time")
        ->type_name("FILE");
}

void addServer(CLI::App &app, RushOptions &options)
{
    app.add_option(
           "--folder", options.folder,
           "Where the started server's database and log are made anew and stay; else they are deleted")
        ->type_name("FOLDER");
    auto *server = app.add_option("--server", options.server, "Do not start a server; use this one")
                       ->type_name("http://127.0.0.1:PORT")
                       ->check(urlProblem);
    auto *database =
        app.add_option("--database", options.database, "Its database; the people are added to it")
            ->type_name("FILE|URL");
    auto *interrupted =
        app.add_flag("--interrupted", options.interrupted,
                     "Somebody else interrupts it: a phone without an answer at its start is signed out");
    interrupted->needs(server);
    server->needs(database);
    database->needs(server);
    for (const char *own : {"--folder", "--kill-after"})
        server->excludes(app.get_option(own));
    auto *serve = app.add_option("serve-options", options.serveOptions,
                                 "After --: further options of clockwell-server serve");
    server->excludes(serve);
}

} // namespace

RushOptions parseRushOptions(std::vector<std::string> arguments)
{
    RushOptions options;
    CLI::App app{
        "Plays the phones of a company in the morning against clockwell-server, on loopback only.\n"
        "Exit status 1: an acknowledged check-in was lost or doubled, or somebody was signed out or did\n"
        "not check in.",
        "clockwell_rush"};
    app.option_defaults()->always_capture_default();
    addPhones(app, options);
    addTrouble(app, options);
    addExpectations(app, options);
    addServer(app, options);
    std::reverse(arguments.begin(), arguments.end()); // the library takes them from the back
    try {
        app.parse(arguments);
    } catch (const CLI::CallForHelp &) {
        throw UsageText{app.help(), 0};
    } catch (const CLI::ParseError &error) {
        throw UsageText{std::string{error.what()} + "\nThe options: --help\n", wrongUsage};
    }
    if (options.killAfter >= std::max(options.seconds, options.signIns > 0 ? options.signInSeconds : 0))
        throw UsageText{"--kill-after: by then all have arrived\n", wrongUsage};
    return options;
}

} // namespace clockwell::rush
