#pragma once

#include "server/auth/Accounts.h"
#include "server/auth/CodeRequests.h"
#include "server/auth/Codes.h"
#include "server/mail/SendMail.h"
#include "server/storage/Database.h"

#include <optional>
#include <string>

namespace clockwell::server {

/// Codes for people who ask for one: because they forgot their password, or once more on the screen where it
/// is entered. Takes the same time whether the address is registered or not. Safe on several threads.
class CodeMailer
{
public:
    CodeMailer(Database &database, Codes &codes, CodeRequests &requests, SendMail sendMail)
        : m_database(database), m_codes(codes), m_requests(requests), m_sendMail(std::move(sendMail))
    {}

    enum class Why { Forgot, Again };

    /// Throws ApiError 429 when too many codes were asked for from this network address, and 503 when an
    /// e-mail would arrive too late.
    void send(const std::string &emailKey, const std::string &remoteAddress, Why why);

private:
    bool store(Connection &connection, const Codes::Asked &asked, const Codes::Fresh &fresh, Why why,
               const std::optional<Employee> &employee) const;

    Database &m_database;
    Codes &m_codes;
    CodeRequests &m_requests;
    SendMail m_sendMail;
};

} // namespace clockwell::server
