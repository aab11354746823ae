#pragma once

#include "FairQueue.h"
#include "Message.h"

#include <boost/asio/awaitable.hpp>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace clockwell::server {

class AccessLog;
class PeerWatch;

struct WorkerLaneOptions
{
    unsigned threads = 1;
    int niceness = 0; ///< of its threads, as in nice(1): they yield to the rest of the process
    /// Zero: whoever comes may wait. Else whoever would have to wait for longer is refused.
    std::chrono::milliseconds longestWait{0};
    std::size_t perNetwork = 0; ///< requests of one network address that may wait; with longestWait
    std::size_t perAccount = 0; ///< requests for one account that may wait; with longestWait
};

/// Runs the handler for one request after the other on threads of its own.
class WorkerLane
{
public:
    using Clock = std::chrono::steady_clock;

    /// A request with what is needed to give it its place.
    struct Visit
    {
        Request request;
        std::string group;               ///< whose turn it takes: a network address, or the same for all
        std::string account;             ///< may be empty
        const PeerWatch *peer = nullptr; ///< outlives the visit; null for a probe
    };

    /// `handler` and `log` must outlive the lane.
    WorkerLane(const WorkerLaneOptions &options, const Handler &handler, const AccessLog &log);
    ~WorkerLane(); ///< abandons the queue and joins
    WorkerLane(const WorkerLane &) = delete;
    WorkerLane &operator=(const WorkerLane &) = delete;

    /// How long until it may be worth to come again, when there is no room; from the measured duration of
    /// recent requests. I/O thread only.
    std::optional<std::chrono::seconds> refusal(const std::string &group, const std::string &account) const;

    /// Runs the handler and resumes on the awaiting coroutine's executor. Never throws: what the handler
    /// throws is logged and becomes the general 500. A request whose client has gone, or whose queue was
    /// abandoned, does not reach the handler: its response is `unanswered`.
    boost::asio::awaitable<Response> run(Visit visit);

    /// Has a thread of the lane call `answered`, which throws nothing, in a turn of its own: before most of
    /// what waits, so that a long queue is no standstill. Any thread.
    void probe(std::function<void()> answered);

    struct Load
    {
        std::size_t waiting = 0;
        std::size_t running = 0;
    };
    Load load() const; ///< requests now; any thread

    /// Requests that still wait are left unanswered.
    void abandonQueue() { m_abandoned = true; }
    /// Blocks until no request waits and every handler that runs has returned.
    void join();

private:
    struct Job
    {
        Visit visit;
        std::function<void(Response)> finish;
    };

    void push(Job job);
    void work();
    std::optional<Job> take();
    void done(Clock::duration duration);
    Response answer(const Visit &visit);
    Response handled(const Request &request) const;
    std::chrono::nanoseconds waitOf(const std::string &group) const;

    const WorkerLaneOptions m_options;
    const Handler &m_handler;
    const AccessLog &m_log;
    std::atomic<bool> m_abandoned{false};

    mutable std::mutex m_lock; // guards all below
    std::condition_variable m_changed;
    FairQueue<Job> m_queue;
    std::size_t m_running = 0;
    bool m_joining = false;
    std::chrono::nanoseconds m_typical; // duration of a request: an average in which old ones fade

    std::vector<std::thread> m_threads; // last: they use the members above
};

} // namespace clockwell::server
