#pragma once

#include "server/attendance/Punches.h"
#include "server/auth/Sessions.h"
#include "server/http/Router.h"
#include "server/storage/Database.h"
#include "server/storage/Instant.h"

#include <vector>

namespace clockwell::server {

/// The day, the distance, the punch, the history and the month. Safe on several threads.
class AttendanceEndpoints
{
public:
    AttendanceEndpoints(Database &database, Sessions &sessions, Punches &punches, Clock clock)
        : m_database(database), m_sessions(sessions), m_punches(punches), m_clock(std::move(clock))
    {}

    std::vector<Route> routes();

private:
    Response today(const Request &request);
    Response distance(const Request &request);
    Response punch(const Request &request);
    Response history(const Request &request);
    Response summary(const Request &request);

    Database &m_database;
    Sessions &m_sessions;
    Punches &m_punches;
    Clock m_clock;
};

} // namespace clockwell::server
