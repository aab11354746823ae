#pragma once

#include "server/attendance/AttendanceEndpoints.h"
#include "server/attendance/Punches.h"
#include "server/auth/AuthEndpoints.h"
#include "server/auth/CodeRequests.h"
#include "server/auth/Codes.h"
#include "server/auth/LoginThrottle.h"
#include "server/auth/PasswordEndpoints.h"
#include "server/auth/Passwords.h"
#include "server/auth/Sessions.h"
#include "server/auth/SignupEndpoints.h"
#include "server/http/Router.h"
#include "server/mail/SendMail.h"
#include "server/storage/Database.h"
#include "server/storage/Instant.h"

#include <chrono>

namespace clockwell::server {

struct Settings
{
    PasswordCost passwordCost;
    RateLimits loginLimits;
    AllowanceLimits failedSignIns{1000, std::chrono::hours{24}}; ///< from one network address
    CodeLimits codes;
    CodeRequestLimits codeRequests;
    std::chrono::hours unverifiedLife{24 * 7}; ///< of an account whose e-mail address nobody verified
    SessionLifetimes sessions;
    TokenLimits accounts = accountLimits;
    /// A punch of the same device this soon is the last one again: longer than the app waits for an answer.
    std::chrono::seconds repeatWindow{90};
    AttendanceEndpoints::OnPunch onPunch; ///< may be null
};

/// The server's services and its table of endpoints, put together once. `handle` is safe on several threads.
class Application
{
public:
    /// The database outlives this.
    Application(Database &database, Clock clock, const Settings &settings = {}, SendMail sendMail = {});
    Application(const Application &) = delete;
    Application &operator=(const Application &) = delete;

    /// Answers any request; failures become error replies, and those that are the server's own are logged.
    /// Leaves a request for the renewal of a session unanswered when it cannot decide it.
    Response handle(const Request &request) const;

    /// Whose work a request is. Refers to this.
    Triage triage() const;

    /// Whether there is an endpoint with this path.
    bool knows(const std::string &path) const { return m_router.knows(path); }

private:
    Response answer(const Request &request) const;

    Passwords m_passwords;
    LoginThrottle m_loginThrottle;
    Codes m_codes;
    CodeRequests m_codeRequests;
    Sessions m_sessions;
    Punches m_punches;
    AuthEndpoints m_auth;
    SignupEndpoints m_signup;
    PasswordEndpoints m_password;
    AttendanceEndpoints m_attendance;
    Router m_router;
};

} // namespace clockwell::server
