#include "server/auth/LoginThrottle.h"

#include "server/http/AccessLog.h"
#include "server/http/PeerAddress.h"

#include <spdlog/spdlog.h>

namespace clockwell::server {

namespace {

constexpr const char *networkComplaint = "Too many wrong passwords came from this network.";
constexpr std::size_t longestCause = 200; // in the log

} // namespace

LoginThrottle::Attempt::Attempt(LoginThrottle &throttle, RateLimit::Subject pair, Counts counts,
                                const char *complaint)
    : m_throttle(throttle), m_pair(std::move(pair))
{
    m_throttle.count(*this, counts, complaint);
}

LoginThrottle::Attempt::~Attempt()
{
    if (m_judged)
        return;
    try {
        m_throttle.m_database.write([&](Connection &connection) {
            m_throttle.m_failures.giveBack(connection, m_pair, m_event);
            giveBackToNetwork(connection);
        });
    } catch (const std::exception &error) {
        spdlog::warn("event=attemptCounts what={}", logValue(error.what(), longestCause));
    }
}

void LoginThrottle::Attempt::wasRight()
{
    m_throttle.m_database.write([&](Connection &connection) { forgive(connection); });
    wasJudged();
}

void LoginThrottle::Attempt::forgive(Connection &connection) const
{
    m_throttle.m_failures.forget(connection, m_pair);
    giveBackToNetwork(connection);
}

void LoginThrottle::Attempt::giveBackToNetwork(Connection &connection) const
{
    if (m_spending)
        m_throttle.m_networks.giveBack(connection, m_pair.network, *m_spending, 1, m_throttle.m_clock());
}

struct LoginThrottle::States
{
    RateLimit::State pair;
    Allowance::State network;
};

/// In a transaction that only reads, unless a clock was set back: a refused attempt must not hold up those
/// who write.
LoginThrottle::States LoginThrottle::look(const RateLimit::Subject &pair, Counts counts, Instant now)
{
    const auto both = [&](Connection &connection) {
        States states{m_failures.look(connection, pair, now), {}};
        if (counts == Counts::ForTheNetworkToo)
            states.network = m_networks.look(connection, pair.network, now);
        return states;
    };
    const States states = m_database.read(both);
    if (!states.pair.isAhead && !states.network.isAhead)
        return states;
    return m_database.write([&](Connection &connection) {
        m_failures.bringBack(connection, pair, now);
        m_networks.settle(connection, pair.network, now);
        return both(connection);
    });
}

void LoginThrottle::count(Attempt &attempt, Counts counts, const char *complaint)
{
    const RateLimit::Subject &pair = attempt.m_pair;
    const Instant now = m_clock();
    States states = look(pair, counts, now);
    m_networks.require(states.network, networkComplaint);
    RateLimit::require(states.pair, complaint);
    m_database.write([&](Connection &connection) {
        const auto event = m_failures.tryTake(connection, pair, states.pair, now);
        RateLimit::require(states.pair, complaint);
        attempt.m_event = event.value();
        RateLimit::tidy(connection, states.pair, now);
        if (counts == Counts::ForThePair)
            return;
        if (m_networks.isSpent(connection, pair.network, states.network, now))
            m_networks.require(states.network, networkComplaint);
        attempt.m_spending = m_networks.spend(connection, pair.network, states.network, 1, now);
        m_networks.tidy(connection, pair.network, states.network, now);
    });
}

LoginThrottle::Attempt LoginThrottle::begin(const std::string &account, const std::string &remoteAddress)
{
    return {*this,
            {account, networkOf(remoteAddress)},
            Counts::ForTheNetworkToo,
            "Too many attempts to sign in."};
}

LoginThrottle::Attempt LoginThrottle::beginChange(const std::string &account,
                                                  const std::string &remoteAddress)
{
    return {*this, {account, networkOf(remoteAddress)}, Counts::ForThePair, "Too many wrong passwords."};
}

void LoginThrottle::forgetAccount(Connection &connection, const std::string &account) const
{
    m_failures.forgetAll(connection, account);
}

} // namespace clockwell::server
