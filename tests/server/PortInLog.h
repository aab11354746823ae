#pragma once

#include "ServerProcess.h"

#include <regex>
#include <string>

namespace clockwell::server::test {

/// The port that a line of the log names; 0 when no such line comes.
inline std::uint16_t portInLog(const ServerProcess &server, const std::string &event)
{
    const std::regex line{"event=" + event + " port=([0-9]+)\\b"};
    if (!server.logs("event=" + event + " "))
        return 0;
    const std::string log = server.log();
    std::smatch match;
    return std::regex_search(log, match, line) ? static_cast<std::uint16_t>(std::stoi(match[1])) : 0;
}

} // namespace clockwell::server::test
