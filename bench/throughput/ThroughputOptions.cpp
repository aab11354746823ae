#include "ThroughputOptions.h"

#include <CLI/CLI.hpp>

#include <stdexcept>
#include <tuple>

namespace clockwell::bench {

namespace {

std::vector<std::uint16_t> portsOf(const std::string &list)
{
    std::vector<std::uint16_t> ports;
    for (const std::string &port : CLI::detail::split(list, ','))
        ports.push_back(static_cast<std::uint16_t>(std::stoul(port)));
    return ports;
}

} // namespace

ThroughputOptions parseThroughputOptions(int argc, const char *const *argv)
{
    ThroughputOptions options;
    std::vector<std::tuple<std::string, std::string, std::string>> targets;
    CLI::App app{"Counts punches and \"today\" a second of servers on loopback", "clockwell_throughput"};
    const auto atLeastOne = CLI::PositiveNumber;
    app.add_option("--rounds", options.rounds)->check(atLeastOne);
    app.add_option("--lanes", options.lanes)->check(atLeastOne);
    app.add_option("--punches", options.punches)->check(atLeastOne);
    app.add_option("--todays", options.todays)->check(atLeastOne);
    app.add_option("--sqlite", options.sqlite, "File for bare commits")->required();
    app.add_option("--postgres", options.postgres, "URL for bare commits")->required();
    app.add_option("--target", targets, "Label, database, and ports with commas between them; several times")
        ->required();
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        throw std::runtime_error{error.what()};
    }
    for (const auto &[label, database, ports] : targets)
        options.targets.push_back({label, database, portsOf(ports)});
    return options;
}

} // namespace clockwell::bench
