#pragma once

#include "server/auth/Allowance.h"
#include "server/auth/RateLimit.h"
#include "server/storage/Database.h"

#include <string>

namespace clockwell::server {

struct CodeRequestLimits
{
    /// Codes for one e-mail address: a few within an hour, and then one whenever the last has expired.
    /// Counted apart for sign-ups and for people who ask for a code.
    RateLimits perAddress{.attempts = 3, .window = std::chrono::hours{1}, .pause = std::chrono::minutes{10}};
    /// Requests from one network address whose code was not entered.
    AllowanceLimits perNetwork{100, std::chrono::minutes{15}};
    /// Messages to one mailbox that somebody tried to sign up with its address.
    RateLimits notices{3, std::chrono::hours{24}};
};

/// Decides which requests lead to a code and to an e-mail. A request is never refused because of others for
/// the same address: no further code is made only while one is under way that can be used. What is seen from
/// outside depends on the requests alone, never on the account. Safe on several threads.
class CodeRequests
{
public:
    enum class Kind { SignUp, Account };

    CodeRequests(Database &database, const CodeRequestLimits &limits, Clock clock);

    /// Counts a request; true when a code is to be made for the address, which counts, too. Throws ApiError
    /// 429 when too many codes that were asked for from this network address were not entered.
    bool begin(Kind kind, const std::string &emailKey, const std::string &remoteAddress);

    // The others are part of the caller's transaction.

    /// A code was entered, so a request from this network address was not a stranger's.
    void forget(Connection &connection, const std::string &remoteAddress) const;

    /// Whether a code that was made may be sent; counts it. Addresses with a tag (see mailboxOf()) that are
    /// not verified share what one address may be sent.
    bool mayMail(Connection &connection, const std::string &emailKey, bool verified) const;

    /// Whether the owner of a verified address may be told of a sign-up with it; counts it.
    bool mayNotify(Connection &connection, const std::string &emailKey) const;

private:
    Database &m_database;
    Clock m_clock;
    Allowance m_perNetwork;
    RateLimit m_signUps;
    RateLimit m_perAddress;
    RateLimit m_perMailbox;
    RateLimit m_notices;
};

} // namespace clockwell::server
