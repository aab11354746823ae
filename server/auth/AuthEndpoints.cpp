#include "server/auth/AuthEndpoints.h"

#include "server/auth/BearerGuard.h"
#include "server/auth/BodyReader.h"
#include "server/auth/EmailAddress.h"
#include "server/http/AccessLog.h"
#include "server/http/ApiError.h"

#include <nlohmann/json.hpp>
#include <spdlog/spdlog.h>

namespace clockwell::server {

namespace {

constexpr std::size_t longestDeviceId = 128;
constexpr std::size_t longestToken = 256;
constexpr std::size_t longestReason = 200; // in the log

ApiError invalidCredentials()
{
    return {401, "INVALID_CREDENTIALS", "The e-mail address or the password is wrong."};
}

} // namespace

Json userJson(const Employee &employee)
{
    Json json{{"id", employee.id}, {"fullName", employee.fullName}, {"email", employee.email}};
    if (employee.phone)
        json["phone"] = *employee.phone;
    json["role"] = employee.role;
    json["status"] = employee.status;
    if (employee.companyId)
        json["instituteId"] = *employee.companyId;
    if (employee.officeId)
        json["officeLocationId"] = *employee.officeId;
    return json;
}

std::vector<Route> AuthEndpoints::routes()
{
    return {
        {"POST", "/api/auth/login", Lane::Password,
         [this](const Request &request) { return login(request); }},
        {"POST", "/api/auth/refresh", Lane::Renewal,
         [this](const Request &request) { return refresh(request); }},
        {"GET", "/api/auth/me", Lane::Renewal, [this](const Request &request) { return me(request); }},
    };
}

Response AuthEndpoints::login(const Request &request)
{
    BodyReader body{request};
    const std::string email = body.account("email");
    const std::string password = body.password("password");
    const std::string deviceId = body.text("deviceId", longestDeviceId);
    body.finish();
    const std::string account = emailKey(email);
    auto attempt = m_throttle.begin(account, request.remoteAddress);
    Employee employee = checkedEmployee(account, password, attempt, request);
    auto pair = start(employee, deviceId, attempt);
    if (!pair && isStillRight(employee, password))
        pair = m_sessions.start(employee, deviceId);
    if (!pair)
        throw invalidCredentials();
    storeAtTodaysCost(employee, password, request);
    spdlog::info("event=signedIn employee={} request={}", employee.id, request.requestId);
    return jsonReply({{"accessToken", pair->accessToken},
                      {"refreshToken", pair->refreshToken},
                      {"user", userJson(employee)}});
}

/// The same answer after the same work, whether the address is unknown or the password is wrong.
Employee AuthEndpoints::checkedEmployee(const std::string &account, const std::string &password,
                                        LoginThrottle::Attempt &attempt, const Request &request)
{
    std::string standIn;
    auto employee = m_database.read([&](Connection &connection) {
        standIn = m_standIns.hashFor(connection, account);
        return findEmployeeByEmail(connection, account);
    });
    const bool matches =
        m_passwords.matches(employee ? employee->passwordHash : standIn, password) && employee;
    if (!matches) {
        attempt.wasWrong();
        spdlog::info("event=signInRefused request={}", request.requestId);
        throw invalidCredentials();
    }
    return std::move(*employee);
}

/// The session of a right password, and the end of what counted against it, in one transaction.
std::optional<TokenPair> AuthEndpoints::start(const Employee &employee, const std::string &deviceId,
                                              LoginThrottle::Attempt &attempt)
{
    std::optional<ApiError> refusal;
    bool tidy = m_sessions.hasLeftovers();
    auto pair = m_database.write([&](Connection &connection) -> std::optional<TokenPair> {
        refusal.reset();
        std::optional<TokenPair> tokens;
        try {
            tokens = m_sessions.start(connection, employee, deviceId, tidy);
        } catch (const ApiError &error) {
            refusal = error; // of the account: the password was right all the same
        }
        // Last, for it reads where all attempts are written: those that come in between should be few.
        attempt.forgive(connection);
        return tokens;
    });
    attempt.wasJudged();
    if (refusal)
        throw ApiError{*refusal};
    return pair;
}

/// After another sign-in has stored the same password anew; the employee becomes what is stored now.
bool AuthEndpoints::isStillRight(Employee &employee, const std::string &password)
{
    auto now =
        m_database.read([&](Connection &connection) { return findEmployeeById(connection, employee.id); });
    if (!now || !m_passwords.matches(now->passwordHash, password))
        return false;
    employee = std::move(*now);
    return true;
}

/// A hash of another cost is replaced, now that the password is known. Nobody's sign-in depends on that.
void AuthEndpoints::storeAtTodaysCost(const Employee &employee, const std::string &password,
                                      const Request &request)
{
    if (!m_passwords.hasOtherCost(employee.passwordHash))
        return;
    try {
        const std::string hash = m_passwords.hash(password);
        m_database.write([&](Connection &connection) {
            connection.execute("UPDATE employees SET password_hash = :hash"
                               " WHERE id = :id AND password_hash = :checked",
                               hash, employee.id, employee.passwordHash);
        });
    } catch (const std::exception &error) {
        spdlog::warn("event=rehashFailed what={} request={}", logValue(error.what(), longestReason),
                     request.requestId);
    }
}

Response AuthEndpoints::refresh(const Request &request)
{
    BodyReader body{request};
    const std::string token = body.text("refreshToken", longestToken);
    body.finish();
    const TokenPair pair = m_sessions.refresh(token);
    return jsonReply({{"accessToken", pair.accessToken}, {"refreshToken", pair.refreshToken}});
}

Response AuthEndpoints::me(const Request &request)
{
    return jsonReply(userJson(requireCallerFirst(m_sessions, request)));
}

} // namespace clockwell::server
