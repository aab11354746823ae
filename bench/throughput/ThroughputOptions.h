#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace clockwell::bench {

/// Servers that share a database.
struct TargetOptions
{
    std::string label;
    std::string database; ///< file or URL
    std::vector<std::uint16_t> ports;
};

struct ThroughputOptions
{
    int rounds = 5;
    int lanes = 16;       ///< connections at once, spread over a target's servers
    int punches = 320;    ///< a round
    int todays = 1600;    ///< a round
    std::string sqlite;   ///< file for the bare commits
    std::string postgres; ///< URL for the bare commits
    std::vector<TargetOptions> targets;
};

/// Throws std::runtime_error for wrong usage.
ThroughputOptions parseThroughputOptions(int argc, const char *const *argv);

} // namespace clockwell::bench
