#include "server/http/OperatorServer.h"

#include "server/http/AccessLog.h"
#include "server/http/JsonReply.h"
#include "server/http/SideServer.h"

#include <nlohmann/json.hpp>
#include <spdlog/spdlog.h>

namespace clockwell::server {

namespace {

constexpr std::size_t longestProblem = 200;
constexpr const char *readyPath = "/ready";

} // namespace

OperatorServer::OperatorServer(const ListenAddress &listen, const HttpServer &main,
                               std::function<void()> checkDatabase)
    : m_main(main),
      m_checkDatabase(std::move(checkDatabase)),
      m_server(sideServerOptions(listen, readyPath), [this](const Request &request) {
          return answerOnly(readyPath, request, [this] { return readiness(); });
      })
{}

Response OperatorServer::readiness() const
{
    if (m_main.isStopping())
        return errorReply({503, "STOPPING", "The server is being stopped."});
    try {
        m_checkDatabase();
    } catch (const std::exception &error) {
        spdlog::error("event=notReady what={}", logValue(error.what(), longestProblem));
        return errorReply({503, "NOT_READY", "The server cannot use its database."});
    }
    return jsonReply({{"status", "ready"}});
}

} // namespace clockwell::server
