#include "server/auth/SignupEndpoints.h"

#include "server/auth/Accounts.h"
#include "server/auth/BodyReader.h"
#include "server/auth/EmailAddress.h"
#include "server/http/PeerAddress.h"
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

std::string verifiedText(const std::string &status, bool contested)
{
    std::string text = "Your e-mail address is verified.";
    if (contested)
        text +=
            " More than one person signed up with it, so the account has no password yet: please choose one"
            " with \"Forgot password?\".";
    else if (status == "APPROVED")
        text += " You can now sign in.";
    return status == "PENDING" ? text + " An administrator now has to approve your account." : text;
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

/// A code that is not one is like none, and an administrator assigns the company: an answer that told them
/// apart would tell strangers which companies there are.
std::optional<std::string> SignupEndpoints::readCompany(BodyReader &body)
{
    const auto code = body.optionalText("instituteCode", longestCompanyCode);
    if (!code)
        return {};
    const auto id = m_database.read([&](Connection &connection) {
        return connection.first<SingleColumn<std::string>>(
            "SELECT id FROM companies WHERE LOWER(code) = :code ORDER BY code", lowerAscii(*code));
    });
    return id ? std::optional{id->value} : std::nullopt;
}

SignupEndpoints::Form SignupEndpoints::readForm(const Request &request)
{
    BodyReader body{request};
    Form form;
    form.applicant.fullName = body.name("fullName", longestFullName);
    form.applicant.email = body.emailAddress("email");
    form.applicant.phone = body.optionalText("phone", longestPhone);
    form.password = body.newPassword("password");
    body.text("deviceId", longestDeviceText); // checked like the sign-in's; an account is bound to no device
    body.optionalText("deviceModel", longestDeviceText);
    body.optionalText("osVersion", longestDeviceText);
    form.applicant.companyId = readCompany(body);
    body.finish();
    return form;
}

std::optional<SignUp> SignupEndpoints::repeated(const std::string &emailKey, const std::string &network,
                                                const std::string &password)
{
    auto latest = m_database.read(
        [&](Connection &connection) { return SignUps::latest(connection, emailKey, network); });
    const bool same =
        m_passwords.matches(latest ? latest->passwordHash : m_passwords.nobodysHash(), password);
    return same ? latest : std::nullopt;
}

Response SignupEndpoints::signup(const Request &request)
{
    m_sendMail.requireRoom(Precedence::Stranger);
    const auto [applicant, password] = readForm(request);
    const std::string key = emailKey(applicant.email);
    const std::string network = networkOf(request.remoteAddress);
    const bool due = m_requests.begin(CodeRequests::Kind::SignUp, key, request.remoteAddress);
    const auto same = repeated(key, network, password);
    const std::string passwordHash = m_passwords.hash(password);
    const Codes::Fresh fresh = m_codes.make(key);
    bool mailed = false;
    const auto recorded = m_database.write([&](Connection &connection) {
        auto done = m_signUps.record(connection, applicant, passwordHash, network, same);
        if (due)
            m_codes.store(connection,
                          {key, network, CodePurpose::Verify, done ? std::optional{done->id} : std::nullopt},
                          fresh);
        mailed = due &&
                 (done ? m_requests.mayMail(connection, key, false) : m_requests.mayNotify(connection, key));
        return done;
    });
    if (mailed)
        mailTo(applicant, recorded, fresh);
    spdlog::info("event=signedUp request={}", request.requestId);
    return jsonReply({{"message", "We have sent you an e-mail. Please enter the code from it."},
                      {"status", "PENDING"},
                      {"emailVerified", false},
                      {"email", applicant.email}},
                     201);
}

void SignupEndpoints::mailTo(const Applicant &applicant, const std::optional<SignUps::Recorded> &recorded,
                             const Codes::Fresh &fresh) const
{
    if (recorded)
        m_sendMail(verificationMail(applicant.email, {fresh.first, fresh.second}, recorded->contested));
    else
        m_sendMail(addressTakenMail(applicant.email));
}

Response SignupEndpoints::verify(const Request &request)
{
    BodyReader body{request};
    const std::string key = emailKey(body.account("email"));
    const std::string code = body.code("code");
    body.finish();
    // A code for a new password proves the address as well: whoever got one and then came here need not start
    // over.
    const Codes::Match match = m_codes.judge(key, code, request.remoteAddress);
    bool contested = false;
    const Employee employee = m_database.write([&](Connection &connection) {
        m_codes.consume(connection, key, match);
        const auto found = findEmployeeByEmail(connection, key);
        if (!found || found->emailVerified != 0)
            throw invalidCode();
        contested = SignUps::settle(connection, *found, match.signUpId, m_passwords.nobodysHash());
        m_requests.forget(connection, request.remoteAddress);
        return findEmployeeById(connection, found->id).value();
    });
    if (contested)
        m_sendMail(choosePasswordMail(employee.email));
    spdlog::info("event=emailVerified employee={} request={}", employee.id, request.requestId);
    return jsonReply({{"message", verifiedText(employee.status, contested)},
                      {"emailVerified", true},
                      {"status", employee.status}});
}

Response SignupEndpoints::resend(const Request &request)
{
    BodyReader body{request};
    const std::string key = emailKey(body.emailAddress("email"));
    body.finish();
    m_mailer.send(key, request.remoteAddress, CodeMailer::Why::Again);
    return jsonReply(
        {{"message", "If this address is registered, a new code is on its way; one that came in the"
                     " last 10 minutes may be used as well."}});
}

} // namespace clockwell::server
