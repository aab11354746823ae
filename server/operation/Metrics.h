#pragma once

#include "server/http/AnsweredRequest.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace clockwell::server {

/// Counts what happens, and shows it with what is so right now, in the text format 0.0.4 of Prometheus.
/// Nothing here names a person, an address or a token: every label comes from a small closed set. Safe on
/// several threads but for countRequest().
class Metrics
{
public:
    static constexpr const char *contentType = "text/plain; version=0.0.4";

    /// Asked each time the metrics are shown, on the thread that shows them. Any may be null.
    struct Gauges
    {
        std::function<std::size_t()> connections;       ///< to the database, in the pool
        std::function<std::size_t()> connectionsInUse;  ///< of these
        std::function<std::size_t()> passwordsWaiting;  ///< requests in the queue of password checks
        std::function<std::size_t()> passwordsRunning;  ///< requests that left that queue and are worked on
        std::function<std::size_t()> mailsWaiting;      ///< messages in the queue
        std::function<std::chrono::seconds()> mailsAge; ///< of the oldest of these; 0 when there is none
    };

    Metrics();
    ~Metrics();
    Metrics(const Metrics &) = delete;
    Metrics &operator=(const Metrics &) = delete;

    /// What the functions read must outlive the last text().
    void readFrom(Gauges gauges);

    /// On one thread only.
    void countRequest(const AnsweredRequest &request);
    /// `outcome`: "IN" or "OUT" for one that was recorded, "REPEATED" for one that had been before, the
    /// `error` of its refusal, or "FAILED".
    void countPunch(std::string_view outcome);
    /// A transaction that the database had run again; `sqlState` of five letters and digits says why.
    void countDatabaseRetry(std::string_view sqlState);

    std::string text() const;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace clockwell::server
