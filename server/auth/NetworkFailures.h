#pragma once

#include "server/auth/Allowance.h"

#include <string>

namespace clockwell::server {

/// Counts the wrong passwords that come from a network address, over all accounts: whoever tries one password
/// for each of many never meets the limit of one account. Right ones do not count, for all employees of an
/// office may share an address. Safe on several threads.
class NetworkFailures
{
public:
    NetworkFailures(AllowanceLimits limits, Clock clock) : m_allowance(limits, std::move(clock)) {}

    /// One attempt. It counts from its beginning on, so that many at once cannot slip through, and no more
    /// when it ends, unless the password was wrong.
    class [[nodiscard]] Attempt
    {
    public:
        ~Attempt();
        Attempt(const Attempt &) = delete;
        Attempt &operator=(const Attempt &) = delete;

        void wasWrong() { m_counts = true; }

    private:
        friend class NetworkFailures;
        Attempt(Allowance &allowance, std::string network);

        Allowance &m_allowance;
        std::string m_network;
        bool m_counts = false;
    };

    /// Throws ApiError 429 with Retry-After when there were too many.
    Attempt begin(const std::string &remoteAddress);

private:
    Allowance m_allowance;
};

} // namespace clockwell::server
