#pragma once

#include "server/Application.h"
#include "server/http/HttpServer.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

namespace clockwell::server::bench {

/// The application behind an HTTP server on a free port of loopback, without a log.
class ServedApplication
{
public:
    /// `database` outlives this.
    explicit ServedApplication(Database &database, const Settings &settings = {});

    std::uint16_t port() const { return m_http.port(); }
    void stop() { m_http.stop(); }

private:
    Application m_application;
    HttpServer m_http;
};

/// The exit status of a benchmark that runs in a new folder of the current directory, and so on its disk. The
/// folder is removed afterwards.
int runInNewFolder(const std::string &name, const std::function<int(const std::filesystem::path &)> &run);

} // namespace clockwell::server::bench
