#include "server/ServeCommand.h"

#include "server/Application.h"
#include "server/demo/DemoData.h"
#include "server/http/DescriptorLimit.h"
#include "server/http/HttpServer.h"
#include "server/http/ListenAddress.h"
#include "server/http/OperatorServer.h"
#include "server/http/StopSignal.h"
#include "server/log/ServiceLog.h"
#include "server/mail/MailQueue.h"
#include "server/operation/MetricsServer.h"
#include "server/operation/ServiceManager.h"
#include "server/storage/NewFile.h"
#include "server/storage/PostgresEncryption.h"
#include "server/storage/PostgresUrl.h"
#include "server/storage/Readiness.h"

#include <spdlog/spdlog.h>

#include <memory>

namespace clockwell::server {

namespace {

HttpServer::Options httpOptions(const ServeCommandOptions &options)
{
    const ListenAddress listen = parseListenAddress(options.listen).value();
    HttpServer::Options http = options.http;
    http.address = listen.address;
    http.port = listen.port;
    makeRoomForConnections(http);
    return http;
}

void limitStrangers(Settings &settings, const StrangerOptions &options)
{
    settings.failedSignIns.size = options.failedSignIns;
    settings.codeRequests.perAddress.attempts = options.codesPerAddress;
    settings.codeRequests.notices.attempts = options.codesPerAddress;
    settings.codeRequests.perNetwork.size = options.codeRequests;
    settings.codes.wrongCodes.size = options.wrongCodes;
    settings.codes.wrongPerNetwork.size = options.wrongCodesPerNetwork;
    settings.codes.triesPerNetwork.size = options.codeTries;
    settings.unverifiedLife = std::chrono::days{options.signUpDays};
}

Settings settingsOf(const ServeCommandOptions &options, Database &database)
{
    Settings settings;
    settings.loginLimits.attempts = options.loginAttempts;
    settings.loginLimits.window = std::chrono::seconds{options.loginWindowSeconds};
    settings.accounts.perMinute = options.accountRequests;
    settings.accounts.burst = options.accountBurst;
    limitStrangers(settings, options.strangers);
    // Whoever tries the demonstration wants to check out right after checking in.
    constexpr std::chrono::seconds demoRepeatWindow{5};
    if (options.repeatWindowSeconds)
        settings.repeatWindow = std::chrono::seconds{*options.repeatWindowSeconds};
    else if (findDemoFacts(database))
        settings.repeatWindow = demoRepeatWindow;
    return settings;
}

DatabaseOptions databaseOptions(const ServeCommandOptions &options, const HttpServer::Options &http)
{
    constexpr unsigned long long megabyte = 1024ULL * 1024;
    DatabaseOptions database;
    database.maximumBytes = options.databaseLimitMegabytes * megabyte;
    database.connections = options.databaseConnections;
    database.readers = std::size_t{http.renewalThreads} + http.signedInThreads + http.passwordThreads;
    return database;
}

std::unique_ptr<OperatorServer> operatorServer(const ServeCommandOptions &options, const HttpServer &main)
{
    const std::string &listen = options.operation.operatorListen;
    if (listen.empty())
        return nullptr;
    return std::make_unique<OperatorServer>(
        parseListenAddress(listen).value(), main,
        [readiness = std::make_shared<Readiness>(options.database)] { readiness->require(); });
}

/// Null when nobody is to see metrics, so that nothing is counted then.
std::unique_ptr<MetricsServer> metricsServer(const ServeCommandOptions &options, const Metrics *metrics)
{
    if (!metrics)
        return nullptr;
    return std::make_unique<MetricsServer>(parseListenAddress(options.operation.metricsListen).value(),
                                           *metrics);
}

Metrics::Gauges gaugesOf(Database &database, const MailQueue &mail, const HttpServer &server)
{
    return {[&database] { return database.connections(); },
            [&database] { return database.connectionsInUse(); },
            [&server] { return server.passwordQueue().waiting; },
            [&server] { return server.passwordQueue().running; },
            [&mail] { return mail.backlog().messages; },
            [&mail] { return mail.backlog().oldest; }};
}

/// Starts a server of those that run beside the main one; null: there is none.
template <class SideServer>
void startBeside(const std::unique_ptr<SideServer> &server, const char *event)
{
    if (!server)
        return;
    server->start();
    spdlog::info("event={} port={}", event, server->port());
}

void sayThatItListens(const HttpServer::Options &http, std::uint16_t port, std::chrono::seconds repeatWindow)
{
    const bool encrypted = !http.certificateFile.empty();
    spdlog::info("event=listening address={} port={} scheme={} repeat_window={}s", http.address, port,
                 encrypted ? "https" : "http", repeatWindow.count());
    if (!encrypted && !isLoopback(http.address))
        spdlog::warn(
            "event=unencrypted advice=\"give --certificate and --private-key, or listen on 127.0.0.1 behind"
            " a proxy that encrypts: passwords travel in requests\"");
}

void warnOfUnencryptedPostgres(Database &database)
{
    const auto address = database.read([](Connection &connection) { return unencryptedAddress(connection); });
    if (!address.empty() && !isLoopback(address))
        spdlog::warn("event=databaseUnencrypted address={} advice=\"use sslmode=verify-full and sslrootcert:"
                     " everything in the database travels there\"",
                     address);
}

/// Whoever waits for the file finds it complete or not at all.
void writePortFile(const std::string &file, std::uint16_t port)
{
    NewFile whole{file, NewFile::IfThere::Replace};
    whole.write(std::to_string(port) + '\n');
    whole.publish();
}

} // namespace

int runServe(const ServeCommandOptions &options)
{
    StopSignal stopSignal; // before anything that a signal would leave half done
    const ServiceLog log{options.operation.logFormat};
    ServiceManager manager;
    const auto metrics = options.operation.metricsListen.empty() ? nullptr : std::make_unique<Metrics>();
    HttpServer::Options http = httpOptions(options);
    DatabaseOptions pool = databaseOptions(options, http);
    if (metrics)
        pool.onRetry = [&metrics](std::string_view sqlstate) { metrics->countDatabaseRetry(sqlstate); };
    Database database{options.database, pool};
    if (isPostgresUrl(options.database))
        warnOfUnencryptedPostgres(database);
    MailQueue mail{openMail(options.mail, options.database), queueOptions(options.mail)};
    Settings settings = settingsOf(options, database);
    if (metrics) {
        settings.onPunch = [&metrics](std::string_view outcome) { metrics->countPunch(outcome); };
        http.onAnswered = [&metrics](const AnsweredRequest &request) { metrics->countRequest(request); };
    }
    Application application{database,
                            systemClock(),
                            settings,
                            {[&mail](Mail message) { mail.post(std::move(message)); },
                             [&mail](Precedence precedence) { return mail.excess(precedence); }}};
    http.isOwnPath = [&application](const std::string &path) { return application.knows(path); };
    HttpServer server{http, [&application](const Request &request) { return application.handle(request); },
                      application.triage()};
    const auto operators = operatorServer(options, server);
    const auto observers = metricsServer(options, metrics.get());
    server.start();
    sayThatItListens(http, server.port(), settings.repeatWindow);
    if (metrics)
        metrics->readFrom(gaugesOf(database, mail, server));
    startBeside(operators, "operatorListening");
    startBeside(observers, "metricsListening");
    if (!options.portFile.empty())
        writePortFile(options.portFile, server.port());
    const ReadyService ready{
        manager, [&server](std::function<void()> answered) { server.probe(std::move(answered)); }};
    const int signal =
        stopSignal.waitThenStop(server, {[&] { manager.stopping(); }, options.operation.drain});
    spdlog::info("event=stopped signal={}", signal);
    return 0;
}

} // namespace clockwell::server
