#pragma once

#include "server/http/HttpServer.h"
#include "server/http/ListenAddress.h"
#include "server/operation/Metrics.h"

namespace clockwell::server {

/// A small server of its own that answers `GET /metrics`.
class MetricsServer
{
public:
    /// `metrics` outlives this.
    MetricsServer(const ListenAddress &listen, const Metrics &metrics);

    void start() { m_server.start(); } ///< throws like HttpServer::start()
    std::uint16_t port() const { return m_server.port(); }

private:
    HttpServer m_server;
};

} // namespace clockwell::server
