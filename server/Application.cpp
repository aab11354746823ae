#include "server/Application.h"

#include "server/ApiError.h"
#include "server/JsonReply.h"
#include "server/http/AccessLog.h"

#include <spdlog/spdlog.h>

namespace clockwell::server {

namespace {

constexpr std::size_t longestReason = 200;

SendMail orNowhere(SendMail sendMail)
{
    return sendMail ? std::move(sendMail) : [](const Mail &) {};
}

} // namespace

Application::Application(Database &database, Clock clock, const Settings &settings, SendMail sendMail)
    : m_passwords(settings.passwordCost),
      m_loginThrottle(settings.loginLimits, clock),
      m_codes(database, m_passwords, clock, settings.codes),
      m_sessions(database, clock, settings.sessions),
      m_punches(database, clock, settings.repeatWindow),
      m_auth(database, m_passwords, m_loginThrottle, m_sessions),
      m_signup(database, m_passwords, m_codes, clock, orNowhere(sendMail)),
      m_password(database, m_passwords, m_codes, m_loginThrottle, m_sessions, orNowhere(sendMail)),
      m_attendance(database, m_sessions, m_punches, clock)
{
    m_router.add(m_auth.routes());
    m_router.add(m_signup.routes());
    m_router.add(m_password.routes());
    m_router.add(m_attendance.routes());
}

Response Application::handle(const Request &request) const
{
    try {
        return m_router.dispatch(request);
    } catch (const ApiError &error) {
        return errorReply(error);
    } catch (const DatabaseError &error) {
        spdlog::error("event=databaseFailed what={} request={}", logValue(error.what(), longestReason),
                      request.requestId);
        return errorReply(toApiError(error));
    } catch (const std::exception &error) {
        spdlog::error("event=requestFailed what={} request={}", logValue(error.what(), longestReason),
                      request.requestId);
        return errorReply({500, "INTERNAL_ERROR", "Something went wrong on the server. Please try again."});
    }
}

} // namespace clockwell::server
