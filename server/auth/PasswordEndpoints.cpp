#include "server/auth/PasswordEndpoints.h"

#include "server/auth/Accounts.h"
#include "server/auth/BearerGuard.h"
#include "server/auth/BodyReader.h"
#include "server/auth/EmailAddress.h"
#include "server/auth/SignUps.h"

#include <nlohmann/json.hpp>
#include <spdlog/spdlog.h>

namespace clockwell::server {

namespace {

/// Not 401: a client would take that for the end of its session.
ApiError wrongPassword()
{
    return {400, "WRONG_PASSWORD", "The current password is wrong."};
}

void storePassword(Connection &connection, const std::string &employeeId, const std::string &hash)
{
    connection.execute("UPDATE employees SET password_hash = :hash WHERE id = :id", hash, employeeId);
}

} // namespace

std::vector<Route> PasswordEndpoints::routes()
{
    return {
        {"POST", "/api/auth/forgot-password", Lane::Password,
         [this](const Request &request) { return forgot(request); }},
        {"POST", "/api/auth/reset-password", Lane::Password,
         [this](const Request &request) { return reset(request); }},
        {"POST", "/api/auth/change-password", Lane::Password,
         [this](const Request &request) { return change(request); }},
    };
}

Response PasswordEndpoints::forgot(const Request &request)
{
    BodyReader body{request};
    const std::string key = emailKey(body.emailAddress("email"));
    body.finish();
    m_mailer.send(key, request.remoteAddress, CodeMailer::Why::Forgot);
    return jsonReply(
        {{"message", "If this address is registered, a code is on its way; one that came in the last"
                     " 10 minutes may be used as well."}});
}

Response PasswordEndpoints::reset(const Request &request)
{
    BodyReader body{request};
    const std::string key = emailKey(body.account("email"));
    const std::string code = body.code("code");
    const std::string password = body.newPassword("newPassword");
    body.finish();
    const Codes::Match match = m_codes.judge(key, code, request.remoteAddress);
    if (match.purpose != CodePurpose::Reset)
        throw invalidCode();
    const std::string hash = m_passwords.hash(password);
    const std::string id = m_database.write([&](Connection &connection) {
        m_codes.consume(connection, key, match);
        const auto employee = findEmployeeByEmail(connection, key);
        if (!employee)
            throw invalidCode();
        if (employee->emailVerified == 0)
            SignUps::settle(connection, *employee, match.signUpId, hash);
        storePassword(connection, employee->id, hash);
        Codes::revoke(connection, key);
        m_sessions.endAll(connection, employee->id);
        m_requests.forget(connection, request.remoteAddress);
        m_throttle.forgetAccount(connection, key);
        return employee->id;
    });
    spdlog::info("event=passwordReset employee={} request={}", id, request.requestId);
    return jsonReply({{"message", "Your new password is set. Please sign in with it."}});
}

Response PasswordEndpoints::change(const Request &request)
{
    const SignedIn caller = requireSignedIn(m_sessions, request);
    BodyReader body{request};
    const std::string current = body.password("currentPassword");
    const std::string next = body.newPassword("newPassword");
    body.finish();
    const std::string account = emailKey(caller.employee.email);
    auto attempt = m_throttle.beginChange(account, request.remoteAddress);
    if (!m_passwords.matches(caller.employee.passwordHash, current)) {
        attempt.wasWrong();
        throw wrongPassword();
    }
    attempt.wasRight();
    const std::string hash = m_passwords.hash(next);
    m_database.write([&](Connection &connection) {
        m_sessions.requireLive(connection, caller.familyId); // a reset may have ended it meanwhile
        const auto now = findEmployeeById(connection, caller.employee.id);
        // The same password may have been stored anew, by a sign-in: rare, or nobody would check it here.
        if (!now || (now->passwordHash != caller.employee.passwordHash &&
                     !m_passwords.matches(now->passwordHash, current)))
            throw wrongPassword();
        storePassword(connection, caller.employee.id, hash);
        m_sessions.endAll(connection, caller.employee.id, caller.familyId);
        Codes::revoke(connection, account); // whoever asked for it: it would undo the change
    });
    spdlog::info("event=passwordChanged employee={} request={}", caller.employee.id, request.requestId);
    return jsonReply({{"message", "Your password is changed."}});
}

} // namespace clockwell::server
