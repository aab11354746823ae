#pragma once

#include "AccessLog.h"
#include "HttpOptions.h"
#include "Lanes.h"
#include "Seating.h"
#include "Throttle.h"

#include <boost/asio/ssl/context.hpp>

#include <memory>

namespace clockwell::server {

/// What all connections of one server share. Used on the I/O thread only, but for the log and the lanes.
struct ServerContext
{
    ServerContext(const HttpOptions &httpOptions, Handler handler, Triage triage,
                  std::unique_ptr<boost::asio::ssl::context> tlsContext)
        : options(httpOptions),
          log(options.logger, options.isOwnPath),
          failures(options.failuresPerMinute, options.failureBurst),
          seating({options.maxConnections, options.connectionsPerNetwork, options.guestConnections}),
          tls(std::move(tlsContext)),
          lanes(options, std::move(handler), std::move(triage), log)
    {}

    const HttpOptions options;
    const AccessLog log;
    RequestIds ids;
    Throttle failures;
    Seating seating;
    std::shared_ptr<boost::asio::ssl::context> tls; ///< null without TLS; of handshakes still to come
    Lanes lanes;
};

} // namespace clockwell::server
