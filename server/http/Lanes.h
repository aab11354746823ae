#pragma once

#include "WorkerLane.h"

namespace clockwell::server {

struct HttpOptions;

/// The lanes of one server. None waits for another.
class Lanes
{
public:
    /// `log` must outlive the lanes.
    Lanes(const HttpOptions &options, Handler handler, Triage triage, const AccessLog &log);

    /// Needs the request's head only.
    Lane laneOf(const Request &request) const;

    /// Has a complete request worked on, see WorkerLane::run(). A request of the password lane is answered
    /// with 503 at once when there is no room for it. `peer` outlives this.
    boost::asio::awaitable<Response> run(Lane lane, Request request, std::string network,
                                         const PeerWatch &peer);

    /// See WorkerLane::probe(); of the lane of those who are signed in.
    void probe(std::function<void()> answered) { m_signedIn.probe(std::move(answered)); }
    WorkerLane::Load passwordLoad() const { return m_password.load(); }

    void abandonQueues();
    void join();

private:
    WorkerLane &lane(Lane lane);

    const Handler m_handler;
    const Triage m_triage;
    WorkerLane m_renewal;
    WorkerLane m_signedIn;
    WorkerLane m_password;
};

} // namespace clockwell::server
