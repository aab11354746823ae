#pragma once

#include "server/auth/RateLimit.h"

#include <string>

namespace clockwell::server {

/// Counts the failed sign-ins of each pair of account and network address, in memory; an IPv6 network of 64
/// bits is one address, for a customer holds at least that many. Safe on several threads.
class LoginThrottle
{
public:
    LoginThrottle(ThrottleLimits limits, Clock clock) : m_failures(limits, std::move(clock)) {}

    /// Counts an attempt as failed before it is judged, so that many at once cannot slip through.
    /// Throws ApiError 429 with Retry-After when there were too many; `complaint` begins its text.
    void begin(const std::string &account, const std::string &address,
               const char *complaint = "Too many attempts to sign in.");

    /// The attempt had the right password: forgets the pair's failures.
    void succeed(const std::string &account, const std::string &address);

    /// The owner of the account has shown who they are: forgets its failures from everywhere.
    void forgetAccount(const std::string &account);

private:
    RateLimit m_failures;
};

} // namespace clockwell::server
