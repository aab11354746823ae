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
    if (employee.instituteId)
        json["instituteId"] = *employee.instituteId;
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
    Employee employee = checkedEmployee(email, password, request);
    auto pair = m_sessions.start(employee, deviceId);
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
Employee AuthEndpoints::checkedEmployee(const std::string &email, const std::string &password,
                                        const Request &request)
{
    const std::string account = emailKey(email);
    auto fromNetwork = m_networkFailures.begin(request.remoteAddress);
    auto attempt = m_throttle.begin(account, request.remoteAddress);
    std::string standIn;
    auto employee = m_database.read([&](Connection &connection) {
        standIn = m_standIns.hashFor(connection, account);
        return findEmployeeByEmail(connection, account);
    });
    const bool matches =
        m_passwords.matches(employee ? employee->passwordHash : standIn, password) && employee;
    if (!matches) {
        fromNetwork.wasWrong();
        attempt.wasWrong();
        spdlog::info("event=signInRefused request={}", request.requestId);
        throw invalidCredentials();
    }
    attempt.wasRight();
    return std::move(*employee);
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
    return jsonReply(userJson(requireEmployeeFirst(m_sessions, request)));
}

} // namespace clockwell::server
