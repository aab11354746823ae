#pragma once

#include "server/auth/StrangerOptions.h"
#include "server/http/HttpOptions.h"
#include "server/mail/MailSettings.h"
#include "server/operation/OperationOptions.h"

#include <optional>
#include <string>

namespace clockwell::server {

struct ServeCommandOptions
{
    std::string database;
    std::string listen = "127.0.0.1:8460"; ///< of a form that parseListenAddress() reads
    HttpOptions http;                      ///< but for the address
    std::string portFile;                  ///< empty: none is written
    unsigned databaseLimitMegabytes = 0;   ///< of the SQLite file; 0: no limit
    unsigned databaseConnections = 0;      ///< to PostgreSQL; 0: one for each thread that answers requests
    unsigned loginAttempts = 5;
    unsigned loginWindowSeconds = 900;
    std::optional<unsigned> repeatWindowSeconds; ///< none: 90, and 5 for the demonstration
    unsigned accountRequests = 240;              ///< of one account in a minute; 0: no limit
    unsigned accountBurst = 120;                 ///< of one account at once
    StrangerOptions strangers;
    MailSettings mail;
    OperationOptions operation;
};

/// `clockwell-server serve`: answers requests until SIGINT or SIGTERM. Returns the exit code; throws
/// std::exception.
int runServe(const ServeCommandOptions &options);

} // namespace clockwell::server
