#pragma once

#include "Message.h"

#include <boost/asio/awaitable.hpp>
#include <boost/asio/thread_pool.hpp>

#include <atomic>
#include <cstddef>
#include <optional>

namespace clockwell::server {

class AccessLog;

/// Runs the handler for one request after the other on a few threads, with a bounded queue before them.
class WorkerPool
{
public:
    /// `log` must outlive the pool.
    WorkerPool(unsigned threads, std::size_t queueLimit, Handler handler, const AccessLog &log);

    /// Runs the handler and resumes on the awaiting coroutine's executor. Never throws: what the handler
    /// throws is logged and becomes the general 500. Empty, at once, when the queue is full.
    boost::asio::awaitable<std::optional<Response>> run(Request request);

    /// Requests that still wait for a worker get a 503 instead of the handler.
    void abandonQueue() { m_abandoned = true; }
    /// Blocks until every handler that runs has returned.
    void join() { m_pool.join(); }

private:
    boost::asio::awaitable<Response> enqueue(Request request);
    Response answer(const Request &request) const;

    const Handler m_handler;
    const AccessLog &m_log;
    const std::size_t m_capacity; // running and waiting requests together
    std::atomic<std::size_t> m_taken{0};
    std::atomic<bool> m_abandoned{false};
    boost::asio::thread_pool m_pool; // last: its threads use the members above
};

} // namespace clockwell::server
