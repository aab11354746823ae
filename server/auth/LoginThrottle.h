#pragma once

#include "server/auth/Allowance.h"
#include "server/auth/RateLimit.h"
#include "server/storage/Database.h"

#include <optional>
#include <string>

namespace clockwell::server {

/// Counts the failed sign-ins of each pair of account and network address; an IPv6 network of 64 bits is one
/// address, for a customer holds at least that many. And, over all accounts, those of a network address:
/// whoever tries one password for each of many never meets the limit of one account. Right passwords do not
/// count, for all employees of an office may share an address. In the database, so that a restart forgets
/// nothing and all servers count together. Safe on several threads.
class LoginThrottle
{
    enum class Counts { ForThePair, ForTheNetworkToo };

public:
    /// One attempt. It counts as failed from its beginning on, so that many at once cannot slip through. When
    /// it ends without a judgement, because the server could not check the password, it does not count,
    /// unless that could not be recorded either: then it counts until it is over.
    class [[nodiscard]] Attempt
    {
    public:
        ~Attempt();
        Attempt(const Attempt &) = delete;
        Attempt &operator=(const Attempt &) = delete;

        void wasWrong() { m_judged = true; } ///< it goes on counting
        /// Forgets the pair's failures, and this one of the network's, in a transaction of its own.
        void wasRight();
        /// The same as part of the caller's transaction; wasJudged() follows when that is recorded.
        void forgive(Connection &connection) const;
        void wasJudged() { m_judged = true; }

    private:
        friend class LoginThrottle;
        Attempt(LoginThrottle &throttle, RateLimit::Subject pair, Counts counts, const char *complaint);
        void giveBackToNetwork(Connection &connection) const;

        LoginThrottle &m_throttle;
        RateLimit::Subject m_pair;
        long long m_event = 0;
        std::optional<std::string> m_spending; // the network's
        bool m_judged = false;
    };

    LoginThrottle(Database &database, RateLimits perPair, AllowanceLimits perNetwork, Clock clock)
        : m_database(database),
          m_failures("SIGN_IN", perPair),
          m_networks("SIGN_IN", perNetwork),
          m_clock(std::move(clock))
    {}

    /// Begins an attempt to sign in. Throws ApiError 429 with Retry-After when too many failed.
    Attempt begin(const std::string &account, const std::string &remoteAddress);

    /// Begins the check of the password of somebody who is signed in: it counts for the pair alone.
    Attempt beginChange(const std::string &account, const std::string &remoteAddress);

    /// The owner of the account has shown who they are: forgets its failures from everywhere, as part of the
    /// caller's transaction.
    void forgetAccount(Connection &connection, const std::string &account) const;

private:
    struct States;

    States look(const RateLimit::Subject &pair, Counts counts, Instant now);
    void count(Attempt &attempt, Counts counts, const char *complaint);

    Database &m_database;
    RateLimit m_failures;
    Allowance m_networks;
    Clock m_clock;
};

} // namespace clockwell::server
