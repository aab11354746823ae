#pragma once

#include "server/http/HttpServer.h"
#include "server/http/ListenAddress.h"

#include <functional>

namespace clockwell::server {

/// A second, small server for those who run the first one, see sideServerOptions(): `GET /health` says that
/// the process lives, and `GET /ready` with 200 that requests are worth sending to it, or 503.
class OperatorServer
{
public:
    /// `checkDatabase` throws std::exception when the database cannot be read; it may block. `main` outlives
    /// this: from the beginning of its drain or stop on the answer is 503.
    OperatorServer(const ListenAddress &listen, const HttpServer &main, std::function<void()> checkDatabase);

    void start() { m_server.start(); } ///< throws like HttpServer::start()
    std::uint16_t port() const { return m_server.port(); }

private:
    Response readiness() const;

    const HttpServer &m_main;
    const std::function<void()> m_checkDatabase;
    HttpServer m_server;
};

} // namespace clockwell::server
