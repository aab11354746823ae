#include "server/CommandLine.h"

#include "server/ServeCommand.h"
#include "server/TrafficOptions.h"
#include "server/admin/AdminCommand.h"
#include "server/demo/DemoCommand.h"
#include "server/http/ListenAddress.h"
#include "server/mail/MailOptions.h"

#include <CLI/CLI.hpp>
#include <spdlog/sinks/stdout_color_sinks.h>
#include <spdlog/spdlog.h>

#include <cstdio>
#include <functional>

namespace clockwell::server {

namespace {

// Each returns what is wrong with an option's text; nothing when it is all right.

std::string listenProblem(const std::string &text)
{
    return parseListenAddress(text) ? "" : "\"" + text + "\" is not of the form 127.0.0.1:8460 or [::1]:8460";
}

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
    command.add_option("--database", file, "The SQLite file; it is made when it is not there")
        ->envname("CLOCKWELL_DATABASE")
        ->required()
        ->type_name("FILE");
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

void addServe(CLI::App &app, ServeCommandOptions &options, std::function<int()> &run)
{
    CLI::App *serve = app.add_subcommand("serve", "Answer the app's requests until SIGINT or SIGTERM");
    addDatabase(*serve, options.database);
    serve->add_option("--listen", options.listen, "Address and port; port 0 takes a free one")
        ->envname("CLOCKWELL_LISTEN")
        ->type_name("ADDRESS:PORT")
        ->check(listenProblem)
        ->capture_default_str();
    serve
        ->add_option("--operator-listen", options.operatorListen,
                     "Another address and port, which answers /health and /ready")
        ->envname("CLOCKWELL_OPERATOR_LISTEN")
        ->type_name("ADDRESS:PORT")
        ->check(listenProblem);
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
                     "Megabytes the database may take; 0: no limit")
        ->envname("CLOCKWELL_DATABASE_LIMIT")
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
    addStrangerOptions(*serve, options.strangers);
    addMailOptions(*serve, options.mail);
    addTrafficOptions(*serve, options.http);
    serve->callback([&] { run = [&] { return runServe(options); }; });
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

} // namespace

int runCommandLine(int argc, const char *const *argv)
{
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
