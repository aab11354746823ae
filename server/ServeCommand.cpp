#include "server/ServeCommand.h"

#include "server/Application.h"
#include "server/OperatorServer.h"
#include "server/demo/DemoData.h"
#include "server/http/DescriptorLimit.h"
#include "server/http/HttpServer.h"
#include "server/http/ListenAddress.h"
#include "server/http/StopSignal.h"
#include "server/log/ServiceLog.h"
#include "server/mail/MailQueue.h"
#include "server/storage/Readiness.h"

#include <spdlog/spdlog.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <system_error>

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

Settings settingsOf(const ServeCommandOptions &options, Database &database)
{
    Settings settings;
    settings.loginLimits.attempts = options.loginAttempts;
    settings.loginLimits.window = std::chrono::seconds{options.loginWindowSeconds};
    settings.accounts.perMinute = options.accountRequests;
    settings.accounts.burst = options.accountBurst;
    applyTo(settings, options.strangers);
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
    database.readers = std::size_t{http.renewalThreads} + http.signedInThreads + http.passwordThreads;
    return database;
}

std::unique_ptr<OperatorServer> operatorServer(const ServeCommandOptions &options, const HttpServer &main)
{
    if (options.operatorListen.empty())
        return nullptr;
    return std::make_unique<OperatorServer>(parseListenAddress(options.operatorListen).value(), main,
                                            [file = options.database] { requireReadableDatabase(file); });
}

/// Whoever waits for the file finds it complete or not at all.
void writePortFile(const std::string &file, std::uint16_t port)
{
    const std::string unfinished = file + ".new";
    {
        std::ofstream stream{unfinished};
        stream << port << '\n';
        if (!stream.flush())
            throw std::runtime_error{"The port file " + file +
                                     " cannot be written: " + std::generic_category().message(errno) + "."};
    }
    std::filesystem::rename(unfinished, file);
}

} // namespace

int runServe(const ServeCommandOptions &options)
{
    StopSignal stopSignal; // before any thread is started
    const ServiceLog log;
    HttpServer::Options http = httpOptions(options);
    Database database{options.database, databaseOptions(options, http)};
    MailQueue mail{openMail(options.mail, options.database), queueOptions(options.mail)};
    const Settings settings = settingsOf(options, database);
    Application application{database,
                            systemClock(),
                            settings,
                            {[&mail](Mail message) { mail.post(std::move(message)); },
                             [&mail](Precedence precedence) { return mail.excess(precedence); }}};
    http.isOwnPath = [&application](const std::string &path) { return application.knows(path); };
    HttpServer server{http, [&application](const Request &request) { return application.handle(request); },
                      application.triage()};
    auto operators = operatorServer(options, server);
    server.start();
    const bool encrypted = !http.certificateFile.empty();
    spdlog::info("event=listening address={} port={} scheme={} repeat_window={}s", http.address,
                 server.port(), encrypted ? "https" : "http", settings.repeatWindow.count());
    if (!encrypted && !isLoopback(http.address))
        spdlog::warn(
            "event=unencrypted advice=\"give --certificate and --private-key, or listen on 127.0.0.1 behind"
            " a proxy that encrypts: passwords travel in requests\"");
    if (operators) {
        operators->start();
        spdlog::info("event=operatorListening port={}", operators->port());
    }
    if (!options.portFile.empty())
        writePortFile(options.portFile, server.port());
    const int signal = stopSignal.waitThenStop(server);
    spdlog::info("event=stopped signal={}", signal);
    return 0;
}

} // namespace clockwell::server
