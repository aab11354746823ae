#pragma once

#include "server/http/HttpOptions.h"

namespace CLI {
class App;
}

namespace clockwell::server {

/// Adds the options of `serve` that say how many may come and who waits for whom.
void addTrafficOptions(CLI::App &serve, HttpOptions &options);

} // namespace clockwell::server
