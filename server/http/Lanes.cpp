#include "Lanes.h"

#include "HttpOptions.h"
#include "Refusal.h"

namespace clockwell::server {

namespace {

// Low, but no standstill: what such a thread has begun in the database must end soon.
constexpr int passwordNiceness = 10;

WorkerLaneOptions passwordLane(const HttpOptions &options)
{
    WorkerLaneOptions lane;
    lane.threads = options.passwordThreads;
    lane.niceness = passwordNiceness;
    lane.longestWait = options.passwordWait;
    lane.perNetwork = options.passwordsPerNetwork;
    lane.perAccount = options.passwordsPerAccount;
    return lane;
}

WorkerLaneOptions plainLane(unsigned threads)
{
    WorkerLaneOptions lane;
    lane.threads = threads;
    return lane;
}

} // namespace

Lanes::Lanes(const HttpOptions &options, Handler handler, Triage triage, const AccessLog &log)
    : m_handler(std::move(handler)),
      m_triage(std::move(triage)),
      m_renewal(plainLane(options.renewalThreads), m_handler, log),
      m_signedIn(plainLane(options.signedInThreads), m_handler, log),
      m_password(passwordLane(options), m_handler, log)
{}

Lane Lanes::laneOf(const Request &request) const
{
    return m_triage.laneOf ? m_triage.laneOf(request) : Lane::SignedIn;
}

WorkerLane &Lanes::lane(Lane lane)
{
    switch (lane) {
    case Lane::Renewal:
        return m_renewal;
    case Lane::Password:
        return m_password;
    default:
        return m_signedIn;
    }
}

boost::asio::awaitable<Response> Lanes::run(Lane lane, Request request, std::string network,
                                            const PeerWatch &peer)
{
    WorkerLane &worker = this->lane(lane);
    WorkerLane::Visit visit;
    visit.request = std::move(request);
    visit.peer = &peer;
    if (lane == Lane::Password) {
        visit.group = std::move(network);
        visit.account = m_triage.accountOf ? m_triage.accountOf(visit.request) : std::string();
        if (const auto wait = worker.refusal(visit.group, visit.account))
            co_return toResponse(refusals::crowded, wait->count());
    }
    co_return co_await worker.run(std::move(visit));
}

void Lanes::abandonQueues()
{
    for (WorkerLane *worker : {&m_renewal, &m_signedIn, &m_password})
        worker->abandonQueue();
}

void Lanes::join()
{
    for (WorkerLane *worker : {&m_renewal, &m_signedIn, &m_password})
        worker->join();
}

} // namespace clockwell::server
