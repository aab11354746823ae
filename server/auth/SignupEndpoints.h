#pragma once

#include "server/auth/CodeMailer.h"
#include "server/auth/CodeRequests.h"
#include "server/auth/Codes.h"
#include "server/auth/Passwords.h"
#include "server/auth/SignUps.h"
#include "server/http/JsonReply.h"
#include "server/http/Router.h"
#include "server/mail/SendMail.h"
#include "server/storage/Database.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace clockwell::server {

class BodyReader;

/// Sign-up and the proof of its e-mail address. Every answer is the same, in content and time, whether the
/// address is free, waits for its proof or has an account, and whether there is a company with the code that
/// was typed. Safe on several threads.
class SignupEndpoints
{
public:
    /// `life`: of an account whose address nobody verified.
    SignupEndpoints(Database &database, Passwords &passwords, Codes &codes, CodeRequests &requests,
                    const Clock &clock, SendMail sendMail, std::chrono::hours life)
        : m_database(database),
          m_passwords(passwords),
          m_codes(codes),
          m_requests(requests),
          m_mailer(database, codes, requests, sendMail),
          m_signUps(clock, life),
          m_sendMail(std::move(sendMail))
    {}

    std::vector<Route> routes();

private:
    struct Form
    {
        Applicant applicant;
        std::string password;
    };

    Response signup(const Request &request);
    Response verify(const Request &request);
    Response resend(const Request &request);

    Form readForm(const Request &request);
    std::optional<std::string> readCompany(BodyReader &body);
    /// The sign-up that this one repeats: the same address and password. Takes the same time for every
    /// address.
    std::optional<SignUp> repeated(const std::string &emailKey, const std::string &network,
                                   const std::string &password);
    void mailTo(const Applicant &applicant, const std::optional<SignUps::Recorded> &recorded,
                const Codes::Fresh &fresh) const;

    Database &m_database;
    Passwords &m_passwords;
    Codes &m_codes;
    CodeRequests &m_requests;
    CodeMailer m_mailer;
    SignUps m_signUps;
    SendMail m_sendMail;
};

} // namespace clockwell::server
