#pragma once

#include "server/auth/LoginThrottle.h"
#include "server/auth/Passwords.h"
#include "server/auth/Sessions.h"
#include "server/auth/StandIns.h"
#include "server/http/JsonReply.h"
#include "server/http/Router.h"
#include "server/storage/Database.h"

#include <optional>
#include <string>
#include <vector>

namespace clockwell::server {

/// Sign-in, renewal of tokens and the signed-in user. Safe on several threads.
class AuthEndpoints
{
public:
    AuthEndpoints(Database &database, Passwords &passwords, LoginThrottle &throttle, Sessions &sessions)
        : m_database(database),
          m_passwords(passwords),
          m_throttle(throttle),
          m_sessions(sessions),
          m_standIns(database, passwords.nobodysHash())
    {}

    std::vector<Route> routes();

private:
    Response login(const Request &request);
    Response refresh(const Request &request);
    Response me(const Request &request);
    Employee checkedEmployee(const std::string &account, const std::string &password,
                             LoginThrottle::Attempt &attempt, const Request &request);
    std::optional<TokenPair> start(const Employee &employee, const std::string &deviceId,
                                   LoginThrottle::Attempt &attempt);
    bool isStillRight(Employee &employee, const std::string &password);
    void storeAtTodaysCost(const Employee &employee, const std::string &password, const Request &request);

    Database &m_database;
    Passwords &m_passwords;
    LoginThrottle &m_throttle;
    Sessions &m_sessions;
    StandIns m_standIns;
};

/// The user as clients see it.
Json userJson(const Employee &employee);

} // namespace clockwell::server
