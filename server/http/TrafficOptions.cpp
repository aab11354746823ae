#include "server/http/TrafficOptions.h"

#include "server/http/TrustedProxies.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <stdexcept>
#include <thread>

namespace clockwell::server {

namespace {

constexpr unsigned mostConnections = 1'000'000;
constexpr unsigned mostThreads = 64;

template <class Number>
void addNumber(CLI::App &serve, const char *name, Number &value, unsigned least, unsigned most,
               const char *meaning)
{
    serve.add_option(name, value, meaning)->check(CLI::Range(least, most))->capture_default_str();
}

std::string networkProblem(const std::string &text)
{
    try {
        const TrustedProxies parsed{{text}};
        return "";
    } catch (const std::invalid_argument &error) {
        return error.what();
    }
}

void addProxies(CLI::App &serve, HttpOptions &options)
{
    serve
        .add_option("--trusted-proxy", options.trustedProxies,
                    "A network of proxies whose X-Forwarded-For is believed; may be given several times")
        ->envname("CLOCKWELL_TRUSTED_PROXY")
        ->type_name("CIDR")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(networkProblem);
}

void addConnections(CLI::App &serve, HttpOptions &options)
{
    addNumber(serve, "--max-connections", options.maxConnections, 1, mostConnections,
              "Connections at a time; beyond them the one idle for longest gives way");
    addNumber(serve, "--connections-per-address", options.connectionsPerNetwork, 1, mostConnections,
              "Connections that one network address may have at a time");
    addNumber(serve, "--failures-per-minute", options.failuresPerMinute, 0, mostConnections,
              "Failing requests without a token from one network address; 0: no limit");
}

void addLanes(CLI::App &serve, HttpOptions &options)
{
    addNumber(serve, "--renewal-threads", options.renewalThreads, 1, mostThreads,
              "Threads for the renewal of sessions");
    addNumber(serve, "--signed-in-threads", options.signedInThreads, 1, mostThreads,
              "Threads for those who are signed in");
    options.passwordThreads = std::clamp(std::thread::hardware_concurrency(), 1U, unsigned{mostThreads});
    addNumber(serve, "--password-threads", options.passwordThreads, 1, mostThreads,
              "Threads for sign-in, codes and passwords; one for each processor unless set");
    serve
        .add_option_function<unsigned>(
            "--password-wait",
            [&options](unsigned seconds) { options.passwordWait = std::chrono::seconds{seconds}; },
            "Seconds that a sign-in may have to wait for its turn before it is refused")
        ->check(CLI::Range(1, 3600))
        ->default_str("20");
    addNumber(serve, "--passwords-per-address", options.passwordsPerNetwork, 1, mostConnections,
              "Sign-ins of one network address that may wait");
    addNumber(serve, "--passwords-per-account", options.passwordsPerAccount, 1, mostConnections,
              "Sign-ins for one account that may wait");
}

} // namespace

void addTrafficOptions(CLI::App &serve, HttpOptions &options)
{
    addProxies(serve, options);
    addConnections(serve, options);
    addLanes(serve, options);
}

} // namespace clockwell::server
