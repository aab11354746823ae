#pragma once

#include "server/auth/Codes.h"
#include "server/auth/Passwords.h"
#include "server/http/JsonReply.h"
#include "server/http/Router.h"
#include "server/mail/Mail.h"
#include "server/storage/Database.h"

#include <optional>
#include <string>
#include <vector>

namespace clockwell::server {

class BodyReader;

/// Sign-up and the proof of its e-mail address. Every answer is the same, in content and time, whether the
/// address is free, waits for its proof or has an account. Safe on several threads.
class SignupEndpoints
{
public:
    SignupEndpoints(Database &database, Passwords &passwords, Codes &codes, Clock clock, SendMail sendMail)
        : m_database(database),
          m_passwords(passwords),
          m_codes(codes),
          m_clock(std::move(clock)),
          m_sendMail(std::move(sendMail))
    {}

    std::vector<Route> routes();

private:
    struct Applicant
    {
        std::string fullName;
        std::string email;
        std::optional<std::string> phone;
        std::string password;
        std::optional<std::string> instituteId;
    };

    Response signup(const Request &request);
    Response verify(const Request &request);
    Response resend(const Request &request);

    Applicant readApplicant(const Request &request);
    std::optional<std::string> readInstitute(BodyReader &body);
    /// False when the address belongs to an account that is verified: then nothing was changed.
    bool record(Connection &connection, const Applicant &applicant, const std::string &passwordHash) const;

    Database &m_database;
    Passwords &m_passwords;
    Codes &m_codes;
    Clock m_clock;
    SendMail m_sendMail;
};

} // namespace clockwell::server
