#pragma once

#include "AccessLog.h"
#include "HttpOptions.h"
#include "Throttle.h"
#include "WorkerPool.h"

#include <boost/asio/ssl/context.hpp>

#include <memory>

namespace clockwell::server {

/// What all connections of one server share. Used on the I/O thread only, but for the log and the pool.
struct ServerContext
{
    ServerContext(const HttpOptions &httpOptions, Handler handler,
                  std::unique_ptr<boost::asio::ssl::context> tlsContext)
        : options(httpOptions),
          log(options.logger),
          throttle(options.requestsPerMinute, options.requestBurst),
          tls(std::move(tlsContext)),
          pool(options.workerThreads, options.workerQueueLimit, std::move(handler), log)
    {}

    const HttpOptions options;
    const AccessLog log;
    RequestIds ids;
    Throttle throttle;
    const std::unique_ptr<boost::asio::ssl::context> tls; ///< null without TLS
    WorkerPool pool;
};

} // namespace clockwell::server
