#pragma once

#include "server/auth/Allowance.h"
#include "server/auth/RateLimit.h"

#include <string>

namespace clockwell::server {

struct CodeRequestLimits
{
    /// Codes for one e-mail address: a few within an hour, and then one whenever the last has expired.
    /// Counted apart for sign-ups and for people who ask for a code.
    ThrottleLimits perAddress{
        .attempts = 3, .window = std::chrono::hours{1}, .pause = std::chrono::minutes{10}};
    /// Requests from one network address whose code was not entered.
    AllowanceLimits perNetwork{100, std::chrono::minutes{15}};
    /// Messages to one mailbox that somebody tried to sign up with its address.
    ThrottleLimits notices{3, std::chrono::hours{24}};
};

/// Decides which requests lead to a code and to an e-mail. A request is never refused because of others for
/// the same address: no further code is made only while one is under way that can be used. What is seen from
/// outside depends on the requests alone, never on the account. Safe on several threads.
class CodeRequests
{
public:
    enum class Kind { SignUp, Account };

    CodeRequests(const CodeRequestLimits &limits, const Clock &clock);

    /// Throws ApiError 429 when too many codes that were asked for from this network address were not
    /// entered.
    void count(const std::string &remoteAddress);
    /// A code was entered, so a request from this network address was not a stranger's.
    void forget(const std::string &remoteAddress);

    /// Whether a code is to be made for the address; counts it.
    bool mayMake(Kind kind, const std::string &emailKey);

    /// Whether a code that was made may be sent; counts it. Addresses with a tag (see mailboxOf()) that are
    /// not verified share what one address may be sent.
    bool mayMail(const std::string &emailKey, bool verified);

    /// Whether the owner of a verified address may be told of a sign-up with it; counts it.
    bool mayNotify(const std::string &emailKey);

private:
    Allowance m_perNetwork;
    RateLimit m_perAddress;
    RateLimit m_perMailbox;
    RateLimit m_notices;
};

} // namespace clockwell::server
