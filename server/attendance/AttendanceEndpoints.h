#pragma once

#include "server/attendance/Punches.h"
#include "server/auth/Sessions.h"
#include "server/http/Router.h"
#include "server/storage/Database.h"
#include "server/storage/Instant.h"

#include <functional>
#include <string_view>
#include <vector>

namespace clockwell::server {

/// The day, the distance, the punch, the history and the month. Safe on several threads.
class AttendanceEndpoints
{
public:
    /// Called with what became of each punch, see Metrics::countPunch(), on the thread of its request. Throws
    /// nothing.
    using OnPunch = std::function<void(std::string_view outcome)>;

    /// `onPunch` may be null.
    AttendanceEndpoints(Database &database, Sessions &sessions, Punches &punches, Clock clock,
                        OnPunch onPunch)
        : m_database(database),
          m_sessions(sessions),
          m_punches(punches),
          m_clock(std::move(clock)),
          m_onPunch(std::move(onPunch))
    {}

    std::vector<Route> routes();

private:
    Response today(const Request &request);
    Response distance(const Request &request);
    Response punch(const Request &request);
    PunchAnswer record(const Employee &employee, const PunchClaim &claim);
    void tell(std::string_view outcome) const;
    Response history(const Request &request);
    Response summary(const Request &request);

    Database &m_database;
    Sessions &m_sessions;
    Punches &m_punches;
    Clock m_clock;
    OnPunch m_onPunch;
};

} // namespace clockwell::server
