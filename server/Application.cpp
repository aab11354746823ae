#include "server/Application.h"

#include "server/auth/RequestAccount.h"
#include "server/http/AccessLog.h"
#include "server/http/ApiError.h"
#include "server/http/JsonReply.h"

#include <spdlog/spdlog.h>

namespace clockwell::server {

namespace {

constexpr std::size_t longestReason = 200;
constexpr int tooManyRequests = 429;
constexpr int firstServerError = 500;
constexpr std::chrono::seconds retryBusy{2};
constexpr std::chrono::seconds retryStorage{60};

/// What a client is told when the database failed; nothing of the request was recorded, unless it says that
/// this is not known.
ApiError toApiError(const DatabaseError &error)
{
    using Kind = DatabaseError::Kind;
    switch (error.kind()) {
    case Kind::Busy:
    case Kind::Conflict:
    case Kind::Locked:
        return ApiError{503, "BUSY",
                        "The server is busy. Nothing was recorded; please try again in a moment."}
            .retryAfter(retryBusy);
    case Kind::Lost:
    case Kind::Unreachable:
        return ApiError{503, "STORAGE_UNREACHABLE",
                        "The server cannot reach its storage. Nothing was recorded; please try again in a"
                        " moment."}
            .retryAfter(retryBusy);
    case Kind::Unconfirmed: // a punch that is repeated finds the first one, if there is one
        return ApiError{503, "UNCONFIRMED",
                        "The server lost its storage at the last moment and does not know what was recorded;"
                        " please try again in a moment."}
            .retryAfter(retryBusy);
    case Kind::Full:
        return ApiError{503, "STORAGE_FULL",
                        "The server's storage is full. Nothing was recorded; please tell your administrator."}
            .retryAfter(retryStorage);
    case Kind::ReadOnly:
        return ApiError{503, "STORAGE_READ_ONLY",
                        "The server cannot write to its storage. Nothing was recorded; please tell your"
                        " administrator."}
            .retryAfter(retryStorage);
    case Kind::Damaged:
        return ApiError{
            500, "STORAGE_DAMAGED",
            "The server's storage is damaged. Nothing was recorded; please tell your administrator."};
    default:
        return ApiError{500, "STORAGE_ERROR",
                        "The server's storage failed. Nothing was recorded; please tell your administrator."};
    }
}

} // namespace

Application::Application(Database &database, Clock clock, const Settings &settings, SendMail sendMail)
    : m_passwords(settings.passwordCost),
      m_loginThrottle(database, settings.loginLimits, settings.failedSignIns, clock),
      m_codes(database, settings.passwordCost, clock, settings.codes),
      m_codeRequests(database, settings.codeRequests, clock),
      m_sessions(database, clock, settings.sessions, settings.accounts),
      m_punches(database, clock, settings.repeatWindow),
      m_auth(database, m_passwords, m_loginThrottle, m_sessions),
      m_signup(database, m_passwords, m_codes, m_codeRequests, clock, sendMail, settings.unverifiedLife),
      m_password(database, m_passwords, m_codes, m_codeRequests, m_loginThrottle, m_sessions, sendMail),
      m_attendance(database, m_sessions, m_punches, clock, settings.onPunch)
{
    m_router.add(m_auth.routes());
    m_router.add(m_signup.routes());
    m_router.add(m_password.routes());
    m_router.add(m_attendance.routes());
}

Triage Application::triage() const
{
    return {[this](const Request &request) { return m_router.laneOf(request); }, accountOf};
}

Response Application::handle(const Request &request) const
{
    Response response = answer(request);
    const bool undecided = response.status == tooManyRequests || response.status >= firstServerError;
    // A client takes any refusal for the end of its session, but no answer for a lost one.
    response.unanswered = undecided && m_router.laneOf(request) == Lane::Renewal;
    return response;
}

Response Application::answer(const Request &request) const
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
