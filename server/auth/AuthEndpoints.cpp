#include "server/auth/AuthEndpoints.h"

#include "server/auth/BearerGuard.h"
#include "server/auth/BodyReader.h"
#include "server/auth/EmailAddress.h"
#include "server/http/ApiError.h"

#include <nlohmann/json.hpp>
#include <spdlog/spdlog.h>

namespace clockwell::server {

namespace {

constexpr std::size_t longestDeviceId = 128;
constexpr std::size_t longestToken = 256;

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
    const Employee employee = checkedEmployee(email, password, request);
    const auto pair = m_sessions.start(employee, deviceId);
    if (!pair)
        throw invalidCredentials();
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
    auto attempt = m_throttle.begin(account, request.remoteAddress);
    auto employee =
        m_database.read([&](Connection &connection) { return findEmployeeByEmail(connection, account); });
    const bool matches = employee ? m_passwords.matches(employee->passwordHash, password)
                                  : m_passwords.matchesNobody(password);
    if (!matches) {
        attempt.wasWrong();
        spdlog::info("event=signInRefused request={}", request.requestId);
        throw invalidCredentials();
    }
    attempt.wasRight();
    requireUsable(*employee);
    return std::move(*employee);
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
