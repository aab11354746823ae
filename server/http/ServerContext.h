#pragma once

#include "AccessLog.h"
#include "HttpOptions.h"
#include "Lanes.h"
#include "Seating.h"
#include "TokenBuckets.h"
#include "TrustedProxies.h"

#include <boost/asio/ssl/context.hpp>

#include <memory>

namespace clockwell::server {

/// What all connections of one server share. Used on the I/O thread only, but for the log and the lanes.
struct ServerContext
{
    ServerContext(const HttpOptions &httpOptions, Handler handler, Triage triage,
                  std::unique_ptr<boost::asio::ssl::context> tlsContext)
        : options(httpOptions),
          proxies(options.trustedProxies),
          log(options.logger, options.isOwnPath, options.onAnswered),
          failures({.perMinute = options.failuresPerMinute, .burst = options.failureBurst}),
          seating({options.maxConnections, options.connectionsPerNetwork, options.guestConnections}),
          tls(std::move(tlsContext)),
          lanes(options, std::move(handler), std::move(triage), log)
    {}

    const HttpOptions options;
    const TrustedProxies proxies;
    const AccessLog log;
    RequestIds ids;
    TokenBuckets failures; // by network address
    Seating seating;
    std::shared_ptr<boost::asio::ssl::context> tls; ///< null without TLS; of handshakes still to come
    bool draining = false;                          ///< answers end their connections
    Lanes lanes;
};

} // namespace clockwell::server
