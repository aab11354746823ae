#pragma once

#include "server/AttendanceEndpoints.h"
#include "server/AuthEndpoints.h"
#include "server/Database.h"
#include "server/Instant.h"
#include "server/LoginThrottle.h"
#include "server/Passwords.h"
#include "server/Punches.h"
#include "server/Router.h"
#include "server/Sessions.h"

#include <chrono>

namespace clockwell::server {

struct Settings
{
    PasswordCost passwordCost;
    ThrottleLimits loginLimits;
    SessionLifetimes sessions;
    std::chrono::seconds repeatWindow{5}; ///< a punch of the same device this soon is the last one again
};

/// The server's services and its table of endpoints, put together once. `handle` is safe on several threads.
class Application
{
public:
    /// The database outlives this.
    Application(Database &database, Clock clock, const Settings &settings = {});
    Application(const Application &) = delete;
    Application &operator=(const Application &) = delete;

    /// Answers any request; failures become error replies, and those that are the server's own are logged.
    Response handle(const Request &request) const;

private:
    Passwords m_passwords;
    LoginThrottle m_loginThrottle;
    Sessions m_sessions;
    Punches m_punches;
    AuthEndpoints m_auth;
    AttendanceEndpoints m_attendance;
    Router m_router;
};

} // namespace clockwell::server
