#include "WorkerLane.h"

#include "AccessLog.h"
#include "PeerWatch.h"
#include "Refusal.h"

#include <boost/asio/associated_executor.hpp>
#include <boost/asio/async_result.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <exception>
#include <memory>

namespace clockwell::server {

namespace asio = boost::asio;

namespace {

constexpr std::chrono::milliseconds firstGuess(50); // of a request's duration, before any was measured
constexpr int fading = 16;                          // the weight of the newest duration is one in so many
constexpr std::chrono::seconds longestRetry(60);
constexpr const char *probeGroup = "probe"; // no network address

/// On Linux a niceness belongs to the thread. It takes no privilege to be nicer.
void beNicer(int by)
{
    constexpr int nicest = 19;
    const auto thread = static_cast<id_t>(::gettid());
    if (by > 0)
        ::setpriority(PRIO_PROCESS, thread, std::min(nicest, ::getpriority(PRIO_PROCESS, thread) + by));
}

Response unansweredResponse()
{
    Response response;
    response.unanswered = true;
    return response;
}

} // namespace

WorkerLane::WorkerLane(const WorkerLaneOptions &options, const Handler &handler, const AccessLog &log)
    : m_options(options), m_handler(handler), m_log(log), m_typical(firstGuess)
{
    try {
        for (unsigned i = 0; i < std::max(1U, options.threads); ++i)
            m_threads.emplace_back([this] { work(); });
    } catch (...) {
        join();
        throw;
    }
}

WorkerLane::~WorkerLane()
{
    abandonQueue();
    join();
}

void WorkerLane::join()
{
    {
        const std::lock_guard lock(m_lock);
        m_joining = true;
    }
    m_changed.notify_all();
    for (std::thread &thread : m_threads)
        thread.join();
    m_threads.clear();
}

/// Of a request that comes now, as if no other group brought more.
std::chrono::nanoseconds WorkerLane::waitOf(const std::string &group) const
{
    const std::size_t threads = std::max(1U, m_options.threads);
    const std::size_t ahead = m_queue.aheadOf(group) + m_running;
    return ahead < threads ? std::chrono::nanoseconds(0)
                           : m_typical * static_cast<long>(ahead) / static_cast<long>(threads);
}

std::optional<std::chrono::seconds> WorkerLane::refusal(const std::string &group,
                                                        const std::string &account) const
{
    if (m_options.longestWait <= m_options.longestWait.zero())
        return std::nullopt;
    const std::lock_guard lock(m_lock);
    const auto wait = waitOf(group);
    const std::size_t waiting = m_queue.waitingOf(group);
    // An account's places must not run out for its owner when strangers elsewhere take them all.
    const bool isInShare =
        waiting == 0 || account.empty() || m_queue.waitingFor(account) < m_options.perAccount;
    if (wait <= m_options.longestWait && waiting < m_options.perNetwork && isInShare)
        return std::nullopt;
    return std::clamp(std::chrono::ceil<std::chrono::seconds>(wait), std::chrono::seconds(1), longestRetry);
}

asio::awaitable<Response> WorkerLane::run(Visit visit)
{
    return asio::async_initiate<const asio::use_awaitable_t<>, void(Response)>(
        [this](auto handler, Visit work) {
            // A std::function must be copyable, and the handler is not.
            const auto resume = std::make_shared<decltype(handler)>(std::move(handler));
            const auto finish = [resume](Response response) {
                asio::post(
                    asio::get_associated_executor(*resume),
                    [resume, response = std::move(response)]() mutable { (*resume)(std::move(response)); });
            };
            push({std::move(work), finish});
        },
        asio::use_awaitable, std::move(visit));
}

void WorkerLane::probe(std::function<void()> answered)
{
    Visit visit;
    visit.group = probeGroup;
    push({std::move(visit), [answered = std::move(answered)](const Response &) { answered(); }});
}

WorkerLane::Load WorkerLane::load() const
{
    const std::lock_guard lock(m_lock);
    return {m_queue.size(), m_running};
}

void WorkerLane::push(Job job)
{
    {
        const std::lock_guard lock(m_lock);
        const std::string group = job.visit.group;
        const std::string account = job.visit.account;
        m_queue.push(group, account, std::move(job));
    }
    m_changed.notify_one();
}

void WorkerLane::work()
{
    beNicer(m_options.niceness);
    while (auto job = take())
        job->finish(answer(job->visit));
}

/// Blocks until there is one; empty once the lane is joined and nothing waits any more.
std::optional<WorkerLane::Job> WorkerLane::take()
{
    std::unique_lock lock(m_lock);
    m_changed.wait(lock, [this] { return m_joining || m_queue.size() > 0; });
    auto job = m_queue.pop();
    m_running += job ? 1 : 0;
    return job;
}

void WorkerLane::done(Clock::duration duration)
{
    const std::lock_guard lock(m_lock);
    --m_running;
    if (duration > duration.zero())
        m_typical += (duration - m_typical) / fading;
}

Response WorkerLane::answer(const Visit &visit)
{
    const auto begin = Clock::now();
    const bool wanted = visit.peer && !m_abandoned && !visit.peer->gone();
    Response response = wanted ? handled(visit.request) : unansweredResponse();
    done(wanted ? Clock::now() - begin : Clock::duration::zero());
    return response;
}

Response WorkerLane::handled(const Request &request) const
{
    try {
        return m_handler(request);
    } catch (const std::exception &error) {
        m_log.handlerFailed(request.requestId, error.what());
    } catch (...) {
        m_log.handlerFailed(request.requestId, "unknown exception");
    }
    return toResponse(refusals::internal);
}

} // namespace clockwell::server
