#pragma once

#include "server/Instant.h"

#include <chrono>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace clockwell::server {

struct ThrottleLimits
{
    std::size_t attempts = 5;         ///< failed attempts within the window before one is refused
    std::chrono::seconds window{900}; ///< counted back from now
    std::size_t entries = 100'000; ///< pairs remembered at most; the one idle for longest is forgotten first
};

/// Counts the failed sign-ins of each pair of account and network address, in memory; an IPv6 network of 64
/// bits is one address, for a customer holds at least that many. Safe on several threads.
class LoginThrottle
{
public:
    LoginThrottle(ThrottleLimits limits, Clock clock) : m_limits(limits), m_clock(std::move(clock)) {}

    /// Counts an attempt as failed before it is judged, so that many at once cannot slip through.
    /// Throws ApiError 429 with Retry-After when there were too many; `complaint` begins its text.
    void begin(const std::string &account, const std::string &address,
               const char *complaint = "Too many attempts to sign in.");

    /// The attempt had the right password: forgets the pair's failures.
    void succeed(const std::string &account, const std::string &address);

    /// The owner of the account has shown who they are: forgets its failures from everywhere.
    void forgetAccount(const std::string &account);

private:
    using Key = std::pair<std::string, std::string>;

    void dropOld(std::vector<Instant> &attempts, Instant now) const;
    void makeRoom(Instant now);

    ThrottleLimits m_limits;
    Clock m_clock;
    std::mutex m_lock;
    std::map<Key, std::vector<Instant>> m_attempts; // each in order of time, at most `attempts` of them
};

} // namespace clockwell::server
