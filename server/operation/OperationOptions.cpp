#include "server/operation/OperationOptions.h"

#include "server/http/ListenAddress.h"

#include <CLI/CLI.hpp>

#include <map>

namespace clockwell::server {

namespace {

void addListener(CLI::App &serve, const char *name, const char *variable, std::string &address,
                 const char *meaning)
{
    serve.add_option(name, address, meaning)
        ->envname(variable)
        ->type_name("ADDRESS:PORT")
        ->check(listenProblem);
}

} // namespace

void addOperationOptions(CLI::App &serve, OperationOptions &options)
{
    addListener(serve, "--operator-listen", "CLOCKWELL_OPERATOR_LISTEN", options.operatorListen,
                "Another address and port, which answers /health and /ready");
    addListener(serve, "--metrics-listen", "CLOCKWELL_METRICS_LISTEN", options.metricsListen,
                "Another address and port, which answers /metrics");
    const std::map<std::string, LogFormat> formats{{"text", LogFormat::Text}, {"json", LogFormat::JsonLines}};
    serve.add_option("--log-format", options.logFormat, "How lines are written to standard error")
        ->envname("CLOCKWELL_LOG_FORMAT")
        ->transform(CLI::CheckedTransformer(formats).description("text|json"))
        ->default_str("text");
    constexpr unsigned longestDrain = 3600;
    serve
        .add_option_function<unsigned>(
            "--drain-seconds",
            [&options](unsigned seconds) { options.drain = std::chrono::seconds{seconds}; },
            "Seconds that requests are still served after SIGTERM, while /ready says no")
        ->check(CLI::Range(0U, longestDrain))
        ->default_str("0");
}

} // namespace clockwell::server
