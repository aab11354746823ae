#include "server/OperatorServer.h"

#include "server/http/AccessLog.h"
#include "server/http/JsonReply.h"

#include <nlohmann/json.hpp>
#include <spdlog/spdlog.h>

#include <string_view>

namespace clockwell::server {

namespace {

constexpr std::size_t longestProblem = 200;
constexpr std::string_view readyPath = "/ready";

HttpServer::Options operatorOptions(const ListenAddress &listen)
{
    HttpServer::Options options;
    options.address = listen.address;
    options.port = listen.port;
    options.renewalThreads = options.signedInThreads = options.passwordThreads = 1;
    options.maxConnections = options.connectionsPerNetwork = 32;
    options.guestConnections = 1;
    options.failuresPerMinute = 0;
    options.isOwnPath = [](const std::string &path) { return path == readyPath; };
    return options;
}

} // namespace

OperatorServer::OperatorServer(const ListenAddress &listen, const HttpServer &main,
                               std::function<void()> checkDatabase)
    : m_main(main),
      m_checkDatabase(std::move(checkDatabase)),
      m_server(operatorOptions(listen), [this](const Request &request) { return answer(request); })
{}

Response OperatorServer::answer(const Request &request) const
{
    if (request.path != readyPath)
        return errorReply({404, "NOT_FOUND", "There is /health and /ready."});
    if (request.method != "GET")
        return errorReply(
            ApiError{405, "METHOD_NOT_ALLOWED", "This address only answers GET."}.with("Allow", "GET"));
    return readiness();
}

Response OperatorServer::readiness() const
{
    if (m_main.isStopping())
        return errorReply({503, "STOPPING", "The server is being stopped."});
    try {
        m_checkDatabase();
    } catch (const std::exception &error) {
        spdlog::error("event=notReady what={}", logValue(error.what(), longestProblem));
        return errorReply({503, "NOT_READY", "The server cannot read its database."});
    }
    return jsonReply({{"status", "ready"}});
}

} // namespace clockwell::server
