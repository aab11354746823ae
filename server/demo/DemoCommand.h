#pragma once

#include "server/demo/DemoData.h"

#include <string>

namespace clockwell::server {

struct DemoCommandOptions
{
    std::string database;
    std::string password = defaultDemoPassword;
    std::string timeZone; ///< a known name; empty: the machine's
    bool fresh = false;   ///< delete what is there first
};

/// `clockwell-server demo`: fills a database and prints how to try it. Returns the exit code; throws
/// std::exception.
int runDemo(const DemoCommandOptions &options);

} // namespace clockwell::server
