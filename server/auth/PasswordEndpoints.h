#pragma once

#include "server/auth/CodeMailer.h"
#include "server/auth/CodeRequests.h"
#include "server/auth/Codes.h"
#include "server/auth/LoginThrottle.h"
#include "server/auth/Passwords.h"
#include "server/auth/Sessions.h"
#include "server/http/JsonReply.h"
#include "server/http/Router.h"
#include "server/mail/SendMail.h"
#include "server/storage/Database.h"

#include <vector>

namespace clockwell::server {

/// New passwords: by an e-mailed code, and by the old one. Safe on several threads.
class PasswordEndpoints
{
public:
    PasswordEndpoints(Database &database, Passwords &passwords, Codes &codes, CodeRequests &requests,
                      LoginThrottle &throttle, Sessions &sessions, SendMail sendMail)
        : m_database(database),
          m_passwords(passwords),
          m_codes(codes),
          m_requests(requests),
          m_mailer(database, codes, requests, std::move(sendMail)),
          m_throttle(throttle),
          m_sessions(sessions)
    {}

    std::vector<Route> routes();

private:
    Response forgot(const Request &request);
    Response reset(const Request &request);
    Response change(const Request &request);

    Database &m_database;
    Passwords &m_passwords;
    Codes &m_codes;
    CodeRequests &m_requests;
    CodeMailer m_mailer;
    LoginThrottle &m_throttle;
    Sessions &m_sessions;
};

} // namespace clockwell::server
