#pragma once

#include "server/auth/Accounts.h"
#include "server/auth/RenewalPatience.h"
#include "server/http/TokenBuckets.h"
#include "server/storage/Database.h"
#include "server/storage/Instant.h"

#include <chrono>
#include <optional>
#include <string>
#include <tuple>

namespace clockwell::server {

struct SessionLifetimes
{
    std::chrono::minutes access{15};
    std::chrono::hours refresh{24 * 30}; ///< from its issue; every refresh gives a new one
    /// How long a used refresh token may come again, for its reply may be lost: longer than the app waits for
    /// a reply, and until somebody has tried again.
    std::chrono::seconds grace{120};
    /// How long a renewal waits for a database that is held: less than the app waits.
    std::chrono::milliseconds patience{std::chrono::seconds{20}};
};

/// Requests that one account may make, wherever they come from.
inline constexpr TokenLimits accountLimits{
    .perMinute = 240, .burst = 120, .crowd = TokenLimits::Crowd::ForgetOldest};

struct TokenPair
{
    std::string accessToken;
    std::string refreshToken;
};

/// Who sends a request, and in which session.
struct SignedIn
{
    std::string familyId;
    Employee employee;

    auto columns() { return std::tuple_cat(std::tie(familyId), employee.columns()); }
};

/// The sessions and their tokens, kept as hashes only. One sign-in starts a family; each refresh uses up one
/// refresh token and issues a pair. Safe on several threads. See docs/server.md for the rules of replay.
class Sessions
{
public:
    Sessions(Database &database, Clock clock, SessionLifetimes lifetimes = {},
             const TokenLimits &limits = accountLimits)
        : m_database(database),
          m_clock(std::move(clock)),
          m_lifetimes(lifetimes),
          m_limit(limits),
          m_patience(lifetimes.patience)
    {}

    /// Starts a family for a device on which the employee has just signed in. Nothing when the password that
    /// was checked has been replaced since: its check takes a while, and what ended the sessions meanwhile
    /// did not know of this one. Throws ApiError 403 for an account that may no longer sign in.
    std::optional<TokenPair> start(const Employee &checked, const std::string &deviceId);
    /// The same as part of the caller's transaction, in which nothing was changed when it throws. `tidy`:
    /// from hasLeftovers(); false afterwards, so that a transaction that has to run again because of this
    /// runs without it.
    std::optional<TokenPair> start(Connection &connection, const Employee &checked,
                                   const std::string &deviceId, bool &tidy) const;
    /// Whether there are sessions that are over, a few of which the start of another one removes.
    bool hasLeftovers() const;

    /// Exchanges a refresh token for a new pair, before everybody else who waits for the database. Throws
    /// ApiError 401 for one that is unknown, expired, revoked or replayed (which ends the family), and 403
    /// for an account that may no longer sign in.
    TokenPair refresh(const std::string &refreshToken);

    /// The employee to whom a bearer token belongs. Throws ApiError 401 when it is not (or no longer) valid,
    /// also when the account may no longer sign in, and 429 when the account sends too many requests.
    SignedIn signedIn(const std::string &accessToken);

    /// Likewise, before everybody else who waits for the database, and however many requests there were.
    SignedIn signedInFirst(const std::string &accessToken);

    /// Ends the employee's sessions but the one named, as part of the caller's transaction.
    void endAll(Connection &connection, const std::string &employeeId,
                const std::string &exceptFamily = {}) const;

    /// Throws ApiError 401 when the session was ended.
    static void requireLive(Connection &connection, const std::string &familyId);

private:
    struct PresentedToken;

    Wait renewalWait(Wait::Clock::time_point began) { return {m_patience.until(began), true}; }
    PresentedToken requirePresented(Connection &connection, const std::string &hash) const;
    TokenPair issue(Connection &connection, const std::string &familyId, long long generation,
                    Instant now) const;
    long long endOf(Instant issued) const { return toMillis(issued + m_lifetimes.refresh); }
    std::optional<TokenPair> exchange(Connection &connection, const PresentedToken &token,
                                      const std::string &hash) const;
    SignedIn requireSignedIn(Connection &connection, const std::string &accessToken) const;

    Database &m_database;
    Clock m_clock;
    SessionLifetimes m_lifetimes;
    TokenBuckets m_limit; // by account
    RenewalPatience m_patience;
};

} // namespace clockwell::server
