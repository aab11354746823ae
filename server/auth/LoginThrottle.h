#pragma once

#include "server/auth/RateLimit.h"

#include <string>

namespace clockwell::server {

/// Counts the failed sign-ins of each pair of account and network address, in memory; an IPv6 network of 64
/// bits is one address, for a customer holds at least that many. Safe on several threads.
class LoginThrottle
{
public:
    /// One attempt. It counts as failed from its beginning on, so that many at once cannot slip through. When
    /// it ends without a judgement, because the server could not check the password, it does not count.
    class [[nodiscard]] Attempt
    {
    public:
        ~Attempt();
        Attempt(const Attempt &) = delete;
        Attempt &operator=(const Attempt &) = delete;

        void wasWrong() { m_judged = true; } ///< it goes on counting
        void wasRight();                     ///< forgets the pair's failures

    private:
        friend class LoginThrottle;
        Attempt(RateLimit &failures, std::string key, const char *complaint);

        RateLimit &m_failures;
        std::string m_key;
        RateLimit::Event m_event;
        bool m_judged = false;
    };

    LoginThrottle(ThrottleLimits limits, Clock clock) : m_failures(limits, std::move(clock)) {}

    /// Begins an attempt. Throws ApiError 429 with Retry-After when too many failed; `complaint` begins its
    /// text.
    Attempt begin(const std::string &account, const std::string &address,
                  const char *complaint = "Too many attempts to sign in.");

    /// The owner of the account has shown who they are: forgets its failures from everywhere.
    void forgetAccount(const std::string &account);

private:
    RateLimit m_failures;
};

} // namespace clockwell::server
