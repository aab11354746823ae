#include "server/auth/SignupEndpoints.h"

#include "server/attendance/CalendarDay.h"
#include "server/auth/Accounts.h"
#include "server/auth/BodyReader.h"
#include "server/auth/EmailAddress.h"
#include "server/auth/Tokens.h"
#include "server/mail/MailTexts.h"

#include <nlohmann/json.hpp>
#include <spdlog/spdlog.h>

namespace clockwell::server {

namespace {

// Characters.
constexpr std::size_t longestFullName = 200;
constexpr std::size_t longestPhone = 64;
constexpr std::size_t longestDeviceText = 128;
constexpr std::size_t longestCompanyCode = 64;

Day utcDayOf(Instant instant)
{
    return Day{std::chrono::floor<std::chrono::days>(instant).time_since_epoch()};
}

std::string nextStep(const std::string &status)
{
    if (status == "APPROVED")
        return " You can now sign in.";
    return status == "PENDING" ? " An administrator now has to approve your account." : "";
}

} // namespace

std::vector<Route> SignupEndpoints::routes()
{
    return {
        {"POST", "/api/auth/signup", Lane::Password,
         [this](const Request &request) { return signup(request); }},
        {"POST", "/api/auth/verify-otp", Lane::Password,
         [this](const Request &request) { return verify(request); }},
        {"POST", "/api/auth/resend-otp", Lane::Password,
         [this](const Request &request) { return resend(request); }},
    };
}

std::optional<std::string> SignupEndpoints::readInstitute(BodyReader &body)
{
    const auto code = body.optionalText("instituteCode", longestCompanyCode);
    if (!code)
        return {};
    const auto id = m_database.read([&](Connection &connection) {
        return connection.first<SingleColumn<std::string>>(
            "SELECT id FROM institutes WHERE LOWER(code) = :code ORDER BY code", lowerAscii(*code));
    });
    if (!id)
        body.addProblem("There is no company with this code.");
    return id ? std::optional{id->value} : std::nullopt;
}

SignupEndpoints::Applicant SignupEndpoints::readApplicant(const Request &request)
{
    BodyReader body{request};
    Applicant applicant;
    applicant.fullName = body.name("fullName", longestFullName);
    applicant.email = body.emailAddress("email");
    applicant.phone = body.optionalText("phone", longestPhone);
    applicant.password = body.newPassword("password");
    body.text("deviceId", longestDeviceText); // checked like the sign-in's; an account is bound to no device
    body.optionalText("deviceModel", longestDeviceText);
    body.optionalText("osVersion", longestDeviceText);
    applicant.instituteId = readInstitute(body);
    body.finish();
    return applicant;
}

Response SignupEndpoints::signup(const Request &request)
{
    const Applicant applicant = readApplicant(request);
    const std::string key = emailKey(applicant.email);
    m_codes.countRequest(key, request.remoteAddress);
    const std::string passwordHash = m_passwords.hash(applicant.password);
    const Codes::Fresh fresh = m_codes.make();
    const bool recorded = m_database.write([&](Connection &connection) {
        m_codes.store(connection, key, CodePurpose::Verify, fresh);
        return record(connection, applicant, passwordHash);
    });
    m_sendMail(recorded ? verificationMail(applicant.email, fresh.code) : addressTakenMail(applicant.email));
    spdlog::info("event=signedUp request={}", request.requestId);
    return jsonReply({{"message", "We have sent you an e-mail. Please enter the code from it."},
                      {"status", "PENDING"},
                      {"emailVerified", false},
                      {"email", applicant.email}},
                     201);
}

bool SignupEndpoints::record(Connection &connection, const Applicant &applicant,
                             const std::string &passwordHash) const
{
    const Instant now = m_clock();
    const std::string key = emailKey(applicant.email);
    const auto known = findEmployeeByEmail(connection, key);
    if (known && known->emailVerified != 0)
        return false;
    if (!known) {
        connection.execute(
            "INSERT INTO employees (id, institute_id, full_name, email, email_key, phone,"
            " password_hash, role, status, email_verified, joined_on, created_at) VALUES"
            " (:id, :institute, :name, :email, :key, :phone, :hash, 'EMPLOYEE', 'PENDING', 0, :day,"
            " :now)",
            newId(), applicant.instituteId, applicant.fullName, applicant.email, key, applicant.phone,
            passwordHash, toText(utcDayOf(now)), toMillis(now));
        return true;
    }
    // What an administrator decided stays: the office, and with it the company, and what was refused. But who
    // was approved may be somebody else.
    const auto institute = known->officeId ? known->instituteId : applicant.instituteId;
    connection.execute("UPDATE employees SET institute_id = :institute, full_name = :name, email = :email,"
                       " phone = :phone, password_hash = :hash,"
                       " role = CASE status WHEN 'APPROVED' THEN 'EMPLOYEE' ELSE role END,"
                       " status = CASE status WHEN 'APPROVED' THEN 'PENDING' ELSE status END WHERE id = :id",
                       institute, applicant.fullName, applicant.email, applicant.phone, passwordHash,
                       known->id);
    return true;
}

Response SignupEndpoints::verify(const Request &request)
{
    BodyReader body{request};
    const std::string key = emailKey(body.account("email"));
    const std::string code = body.code("code");
    body.finish();
    // A code for a new password proves the address as well: whoever got one and then came here need not start
    // over.
    const Codes::Match match = m_codes.judge(key, code);
    const Employee employee = m_database.write([&](Connection &connection) {
        m_codes.consume(connection, key, match);
        auto found = findEmployeeByEmail(connection, key);
        if (!found || found->emailVerified != 0)
            throw invalidCode();
        connection.execute("UPDATE employees SET email_verified = 1 WHERE id = :id", found->id);
        return std::move(*found);
    });
    m_codes.forgetWrongCodes(key);
    spdlog::info("event=emailVerified employee={} request={}", employee.id, request.requestId);
    return jsonReply({{"message", "Your e-mail address is verified." + nextStep(employee.status)},
                      {"emailVerified", true},
                      {"status", employee.status}});
}

Response SignupEndpoints::resend(const Request &request)
{
    BodyReader body{request};
    const std::string key = emailKey(body.emailAddress("email"));
    body.finish();
    m_codes.countRequest(key, request.remoteAddress);
    const Codes::Fresh fresh = m_codes.make();
    CodePurpose purpose = CodePurpose::Verify;
    const auto employee = m_database.write([&](Connection &connection) {
        auto found = findEmployeeByEmail(connection, key);
        const auto last = m_codes.lastPurpose(connection, key);
        const bool verified = found && found->emailVerified != 0;
        purpose = verified ? CodePurpose::Reset : last.value_or(CodePurpose::Verify);
        m_codes.store(connection, key, purpose, fresh);
        return found;
    });
    if (employee)
        m_sendMail(purpose == CodePurpose::Verify ? verificationMail(employee->email, fresh.code)
                                                  : resetMail(employee->email, fresh.code));
    return jsonReply({{"message", "If this address is registered, a new code is on its way."}});
}

} // namespace clockwell::server
