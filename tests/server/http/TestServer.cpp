#include "TestServer.h"

#include <spdlog/logger.h>
#include <spdlog/sinks/ostream_sink.h>

namespace clockwell::server {

HttpOptions TestServer::usualOptions()
{
    HttpOptions options;
    options.signedInThreads = 2;
    return options;
}

HttpOptions TestServer::quickOptions()
{
    using std::chrono::milliseconds;
    HttpOptions options = usualOptions();
    options.headDeadline = milliseconds(400);
    options.requestDeadline = milliseconds(600);
    options.writeDeadline = milliseconds(500);
    options.idleDeadline = milliseconds(400);
    options.lingerDeadline = milliseconds(300);
    options.stopDeadline = milliseconds(1500);
    return options;
}

TestServer::TestServer(Handler handler, HttpOptions options, Triage triage)
{
    const auto sink = std::make_shared<spdlog::sinks::ostream_sink_mt>(m_log);
    options.logger = std::make_shared<spdlog::logger>("http-test", sink);
    options.logger->set_pattern("%l %v");
    options.isOwnPath = [](const std::string &) { return true; };
    m_server = std::make_unique<HttpServer>(options, std::move(handler), std::move(triage));
    m_server->start();
}

TestServer::~TestServer()
{
    m_server->stop();
}

std::string TestServer::log()
{
    m_server->stop();
    return m_log.str();
}

Response TestServer::echo(const Request &request)
{
    std::string text = "method=" + request.method + "\npath=" + request.path + "\n";
    for (const auto &[key, value] : request.query)
        text += "query " + key + "=" + value + "\n";
    text += "authorization=" + request.authorization + "\ntype=" + request.contentType +
            "\nbody=" + request.body + "\nfrom=" + request.remoteAddress + "\n";
    return {200, text, "text/plain", {}};
}

Triage TestServer::byPath()
{
    const auto laneOf = [](const Request &request) {
        if (request.path.starts_with("/renewal"))
            return Lane::Renewal;
        return request.path.starts_with("/password") ? Lane::Password : Lane::SignedIn;
    };
    return {laneOf, [](const Request &request) { return request.body; }};
}

} // namespace clockwell::server
