#include "server/operation/MetricsServer.h"

#include "server/http/SideServer.h"

namespace clockwell::server {

namespace {
constexpr const char *metricsPath = "/metrics";
}

MetricsServer::MetricsServer(const ListenAddress &listen, const Metrics &metrics)
    : m_server(sideServerOptions(listen, metricsPath), [&metrics](const Request &request) {
          return answerOnly(metricsPath, request, [&metrics] {
              return Response{200, metrics.text(), Metrics::contentType, {}};
          });
      })
{}

} // namespace clockwell::server
