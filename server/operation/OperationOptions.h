#pragma once

#include "server/log/ServiceLog.h"

#include <chrono>
#include <string>

namespace CLI {
class App;
}

namespace clockwell::server {

/// What those who run the server see of it, and how it ends.
struct OperationOptions
{
    std::string operatorListen; ///< of a form that parseListenAddress() reads; empty: nowhere
    std::string metricsListen;  ///< likewise
    LogFormat logFormat = LogFormat::Text;
    std::chrono::seconds drain{0}; ///< from the signal to stop until the stop begins
};

/// Adds them to `serve`. `options` outlives the command line.
void addOperationOptions(CLI::App &serve, OperationOptions &options);

} // namespace clockwell::server
