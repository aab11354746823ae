#include "ServedApplication.h"

#include <spdlog/sinks/null_sink.h>
#include <spdlog/spdlog.h>

#include <cstdio>
#include <memory>

namespace clockwell::server::bench {

namespace {

HttpServer::Options withoutLog()
{
    HttpServer::Options options;
    options.logger =
        std::make_shared<spdlog::logger>("none", std::make_shared<spdlog::sinks::null_sink_mt>());
    return options;
}

} // namespace

ServedApplication::ServedApplication(Database &database, const Settings &settings)
    : m_application(database, systemClock(), settings),
      m_http(
          withoutLog(), [this](const Request &request) { return m_application.handle(request); },
          m_application.triage())
{
    m_http.start();
}

int runInNewFolder(const std::string &name, const std::function<int(const std::filesystem::path &)> &run)
{
    spdlog::set_level(spdlog::level::off);
    const auto directory = std::filesystem::current_path() / name;
    std::filesystem::remove_all(directory);
    std::filesystem::create_directory(directory);
    int status = 1;
    try {
        status = run(directory);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
    std::filesystem::remove_all(directory);
    return status;
}

} // namespace clockwell::server::bench
