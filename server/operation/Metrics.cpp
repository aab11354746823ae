#include "server/operation/Metrics.h"

#include <prometheus/counter.h>
#include <prometheus/gauge.h>
#include <prometheus/histogram.h>
#include <prometheus/registry.h>
#include <prometheus/text_serializer.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace clockwell::server {

namespace {

using prometheus::Counter;
using prometheus::Family;
using prometheus::Gauge;
using prometheus::Histogram;

/// In seconds. Most requests take milliseconds, a password some tens of them, and the app waits for 25 s.
const Histogram::BucketBoundaries durationBuckets{0.005, 0.025, 0.1, 0.5, 2.5, 10, 25};

double secondsSince1970()
{
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

bool isSqlState(std::string_view text)
{
    constexpr std::size_t length = 5;
    const auto fits = [](char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z'); };
    return text.size() == length && std::ranges::all_of(text, fits);
}

} // namespace

class Metrics::Impl
{
public:
    Impl();
    void readFrom(Gauges gauges);
    void countRequest(const AnsweredRequest &request);
    void countPunch(std::string_view outcome)
    {
        m_punches.Add({{"outcome", std::string{outcome}}}).Increment();
    }
    void countRetry(std::string_view sqlState)
    {
        const std::string_view known = isSqlState(sqlState) ? sqlState : "other";
        m_retries.Add({{"sqlstate", std::string{known}}}).Increment();
    }
    std::string text() const;

private:
    using Route = std::tuple<std::string, std::string>;     // method and path
    using Kind = std::tuple<std::string, std::string, int>; // and status
    using KindView = std::tuple<std::string_view, std::string_view, int>;
    using RouteView = std::tuple<std::string_view, std::string_view>;

    Gauge &addGauge(const char *name, const char *help);
    template <class Value>
    void show(const char *name, const char *help, std::function<Value()> read);
    Counter &counterOf(const AnsweredRequest &request);
    Histogram &durationsOf(const AnsweredRequest &request);

    prometheus::Registry m_registry;
    Family<Counter> &m_requests;
    Family<Histogram> &m_durations;
    Family<Counter> &m_punches;
    Family<Counter> &m_retries;
    std::map<Kind, Counter *, std::less<>> m_known; // to find one again takes the library much longer
    std::map<Route, Histogram *, std::less<>> m_knownRoutes;
    std::vector<std::function<void()>> m_updates; // of the gauges
    mutable std::mutex m_showing;                 // so that what one reader set is not shown to another
};

Metrics::Impl::Impl()
    : m_requests(prometheus::BuildCounter()
                     .Name("clockwell_http_requests_total")
                     .Help("Requests that were answered; status 0: the connection was closed instead.")
                     .Register(m_registry)),
      m_durations(prometheus::BuildHistogram()
                      .Name("clockwell_http_request_duration_seconds")
                      .Help("From the first byte of a request to the last one of its answer.")
                      .Register(m_registry)),
      m_punches(prometheus::BuildCounter()
                    .Name("clockwell_punches_total")
                    .Help("Punches by what became of them.")
                    .Register(m_registry)),
      m_retries(prometheus::BuildCounter()
                    .Name("clockwell_database_retries_total")
                    .Help("Transactions that were run again, by the SQLSTATE that made it necessary.")
                    .Register(m_registry))
{
    prometheus::BuildGauge()
        .Name("clockwell_build_info")
        .Help("Always 1; the label says which version runs.")
        .Register(m_registry)
        .Add({{"version", CLOCKWELL_VERSION}})
        .Set(1);
    addGauge("process_start_time_seconds", "When the server started, in seconds since 1970 (UTC).")
        .Set(secondsSince1970());
}

Gauge &Metrics::Impl::addGauge(const char *name, const char *help)
{
    return prometheus::BuildGauge().Name(name).Help(help).Register(m_registry).Add({});
}

template <class Value>
void Metrics::Impl::show(const char *name, const char *help, std::function<Value()> read)
{
    if (!read)
        return;
    const auto toNumber = [](Value value) {
        if constexpr (std::is_same_v<Value, std::chrono::seconds>)
            return static_cast<double>(value.count());
        else
            return static_cast<double>(value);
    };
    m_updates.push_back(
        [&gauge = addGauge(name, help), read = std::move(read), toNumber] { gauge.Set(toNumber(read())); });
}

void Metrics::Impl::readFrom(Gauges gauges)
{
    show("clockwell_database_connections", "Connections in the pool.", std::move(gauges.connections));
    show("clockwell_database_connections_in_use", "Connections of the pool that work for a request.",
         std::move(gauges.connectionsInUse));
    show("clockwell_password_queue_waiting", "Requests that wait for a check of a password or code.",
         std::move(gauges.passwordsWaiting));
    show("clockwell_password_queue_running", "Requests whose password or code is being checked.",
         std::move(gauges.passwordsRunning));
    show("clockwell_mail_queue_messages", "E-mails that wait for their delivery.",
         std::move(gauges.mailsWaiting));
    show("clockwell_mail_queue_oldest_seconds", "How long the oldest of these has waited.",
         std::move(gauges.mailsAge));
}

Counter &Metrics::Impl::counterOf(const AnsweredRequest &request)
{
    const auto known = m_known.find(KindView{request.method, request.path, request.status});
    if (known != m_known.end())
        return *known->second;
    Kind kind{request.method, request.path, request.status};
    Counter &counter = m_requests.Add({{"method", std::get<0>(kind)},
                                       {"route", std::get<1>(kind)},
                                       {"status", std::to_string(request.status)}});
    m_known.emplace(std::move(kind), &counter);
    return counter;
}

Histogram &Metrics::Impl::durationsOf(const AnsweredRequest &request)
{
    const auto known = m_knownRoutes.find(RouteView{request.method, request.path});
    if (known != m_knownRoutes.end())
        return *known->second;
    Route route{request.method, request.path};
    Histogram &durations =
        m_durations.Add({{"method", std::get<0>(route)}, {"route", std::get<1>(route)}}, durationBuckets);
    m_knownRoutes.emplace(std::move(route), &durations);
    return durations;
}

void Metrics::Impl::countRequest(const AnsweredRequest &request)
{
    counterOf(request).Increment();
    durationsOf(request).Observe(std::chrono::duration<double>(request.duration).count());
}

std::string Metrics::Impl::text() const
{
    const std::lock_guard lock{m_showing};
    for (const auto &update : m_updates)
        update();
    return prometheus::TextSerializer{}.Serialize(m_registry.Collect());
}

Metrics::Metrics() : m_impl(std::make_unique<Impl>()) {}

Metrics::~Metrics() = default;

void Metrics::readFrom(Gauges gauges)
{
    m_impl->readFrom(std::move(gauges));
}

void Metrics::countRequest(const AnsweredRequest &request)
{
    m_impl->countRequest(request);
}

void Metrics::countPunch(std::string_view outcome)
{
    m_impl->countPunch(outcome);
}

void Metrics::countDatabaseRetry(std::string_view sqlState)
{
    m_impl->countRetry(sqlState);
}

std::string Metrics::text() const
{
    return m_impl->text();
}

} // namespace clockwell::server
