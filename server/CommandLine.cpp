#include "server/CommandLine.h"

#include "server/ServeCommand.h"
#include "server/admin/cli/AdminCommand.h"
#include "server/demo/DemoCommand.h"
#include "server/http/ListenAddress.h"
#include "server/http/TrafficOptions.h"
#include "server/mail/MailOptions.h"
#include "server/operation/OperationOptions.h"
#include "server/storage/PostgresUrl.h"

#include <CLI/CLI.hpp>
#include <spdlog/sinks/stdout_color_sinks.h>
#include <spdlog/spdlog.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <span>
#include <string_view>

namespace clockwell::server {

namespace {

// Each returns what is wrong with an option's text; nothing when it is all right.

std::string timeZoneProblem(const std::string &text)
{
    return TimeZone::named(text) ? ""
                                 : "there is no time zone \"" + text + "\"; use a name like Europe/Berlin";
}

std::string passwordProblem(const std::string &text)
{
    return text.empty() || text.size() > Passwords::longestPassword ? "the password has no usable length"
                                                                    : "";
}

constexpr int exitFailure = 1;
constexpr int exitWrongUsage = 2;

void addDatabase(CLI::App &command, std::string &file)
{
    command
        .add_option("--database", file,
                    "The SQLite file, made when it is not there, or the URL of a PostgreSQL database")
        ->envname("CLOCKWELL_DATABASE")
        ->required()
        ->type_name("FILE|URL");
}

void addAccounts(CLI::App &serve, ServeCommandOptions &options)
{
    serve
        .add_option("--account-requests", options.accountRequests,
                    "Requests a minute that one signed-in account may make; 0: no limit")
        ->check(CLI::Range(0, 1'000'000))
        ->capture_default_str();
    serve
        .add_option("--account-burst", options.accountBurst,
                    "Requests that one signed-in account may make at once, after a rest")
        ->check(CLI::Range(1, 1'000'000))
        ->capture_default_str();
}

/// An option that would change nothing is a misunderstanding.
void requireOptionsOfThisDatabase(const ServeCommandOptions &options)
{
    const bool isPostgres = isPostgresUrl(options.database);
    if (isPostgres && options.databaseLimitMegabytes != 0)
        throw CLI::ValidationError{"--database-limit is for a SQLite file; how large a database of PostgreSQL"
                                   " may grow is for its own server and disk to say"};
    if (!isPostgres && options.databaseConnections != 0)
        throw CLI::ValidationError{
            "--database-connections is for PostgreSQL; a SQLite file has one connection"
            " that writes, and one for each thread that reads"};
}

void addServe(CLI::App &app, ServeCommandOptions &options, std::function<int()> &run)
{
    CLI::App *serve = app.add_subcommand("serve", "Answer the app's requests until SIGINT or SIGTERM");
    addDatabase(*serve, options.database);
    serve->add_option("--listen", options.listen, "Address and port; port 0 takes a free one")
        ->envname("CLOCKWELL_LISTEN")
        ->type_name("ADDRESS:PORT")
        ->check(listenProblem)
        ->capture_default_str();
    auto *certificate = serve
                            ->add_option("--certificate", options.http.certificateFile,
                                         "PEM certificate chain; turns HTTPS on")
                            ->envname("CLOCKWELL_CERTIFICATE")
                            ->type_name("FILE");
    auto *key =
        serve->add_option("--private-key", options.http.privateKeyFile, "PEM private key of the certificate")
            ->envname("CLOCKWELL_PRIVATE_KEY")
            ->type_name("FILE");
    certificate->needs(key);
    key->needs(certificate);
    serve->add_option("--port-file", options.portFile, "Write the port here once requests are answered")
        ->type_name("FILE");
    serve
        ->add_option("--database-limit", options.databaseLimitMegabytes,
                     "Megabytes the SQLite file may take; 0: no limit")
        ->envname("CLOCKWELL_DATABASE_LIMIT")
        ->capture_default_str();
    serve
        ->add_option("--database-connections", options.databaseConnections,
                     "Connections to PostgreSQL; 0: one for each thread that answers requests")
        ->envname("CLOCKWELL_DATABASE_CONNECTIONS")
        ->check(CLI::Range(0, 1000))
        ->capture_default_str();
    serve->add_option("--login-attempts", options.loginAttempts, "Wrong passwords before sign-in is refused")
        ->check(CLI::Range(1, 1000))
        ->capture_default_str();
    serve->add_option("--login-window", options.loginWindowSeconds, "Seconds for which wrong passwords count")
        ->check(CLI::Range(1, 86'400))
        ->capture_default_str();
    serve
        ->add_option("--repeat-window", options.repeatWindowSeconds,
                     "Seconds within which a device's next punch is the last one again")
        ->check(CLI::Range(0, 300))
        ->default_str("90 (demonstration: 5)");
    addAccounts(*serve, options);
    addOperationOptions(*serve, options.operation);
    addStrangerOptions(*serve, options.strangers);
    addMailOptions(*serve, options.mail);
    addTrafficOptions(*serve, options.http);
    serve->callback([&] {
        requireOptionsOfThisDatabase(options);
        run = [&] { return runServe(options); };
    });
}

void addDemo(CLI::App &app, DemoCommandOptions &options, std::function<int()> &run)
{
    CLI::App *demo = app.add_subcommand(
        "demo", "Fill an empty database with a small organisation and an employee ready to sign in");
    addDatabase(*demo, options.database);
    demo->add_flag("--fresh", options.fresh, "Delete everything in the database but the audit first");
    demo->add_option("--password", options.password, "The password of the demonstration's accounts")
        ->check(passwordProblem)
        ->capture_default_str();
    demo->add_option("--time-zone", options.timeZone,
                     "The office's time zone, e.g. Europe/Berlin [this machine's]")
        ->type_name("NAME")
        ->check(timeZoneProblem);
    demo->callback([&] { run = [&] { return runDemo(options); }; });
}

/// What is wrong with a URL of a database among the words, before anything repeats it: everybody on the
/// machine can read the words of a process.
std::string secretProblem(int argc, const char *const *argv)
{
    for (const std::string_view word : std::span{argv, static_cast<std::size_t>(argc)}) {
        const auto begin = word.find("postgres");
        const std::string url{word.substr(std::min(begin, word.size()))};
        if (!isPostgresUrl(url))
            continue;
        if (auto problem = postgresUrlProblem(url); !problem.empty())
            return problem;
        if (holdsPassword(url))
            return "The URL of the database holds a password, which everybody on this machine could read in"
                   " the list of processes. Leave it out, and set PGPASSWORD or PGPASSFILE, name a service"
                   " (postgresql://?service=NAME), or pass the URL in CLOCKWELL_DATABASE (for --to in"
                   " CLOCKWELL_MOVE_TO).";
    }
    return {};
}

} // namespace

int runCommandLine(int argc, const char *const *argv)
{
    if (const std::string problem = secretProblem(argc, argv); !problem.empty()) {
        std::fprintf(stderr, "clockwell-server: %s\n", problem.c_str());
        return exitWrongUsage;
    }
    CLI::App app{"The reference server of Clockwell"};
    app.require_subcommand(1);
    ServeCommandOptions serveOptions;
    DemoCommandOptions demoOptions;
    std::function<int()> run;
    addServe(app, serveOptions, run);
    addDemo(app, demoOptions, run);
    addAdmin(app, run);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : exitWrongUsage;
    }
    spdlog::set_default_logger(spdlog::stderr_color_mt("clockwell-server"));
    try {
        return run();
    } catch (const std::exception &error) {
        std::fprintf(stderr, "clockwell-server: %s\n", error.what());
        return exitFailure;
    }
}

} // namespace clockwell::server
