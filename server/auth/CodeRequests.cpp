#include "server/auth/CodeRequests.h"

#include "server/auth/EmailAddress.h"
#include "server/http/PeerAddress.h"

namespace clockwell::server {

namespace {

constexpr const char *requestsComplaint = "Too many codes were asked for from this network.";

} // namespace

CodeRequests::CodeRequests(Database &database, const CodeRequestLimits &limits, Clock clock)
    : m_database(database),
      m_clock(std::move(clock)),
      m_perNetwork("CODE_REQUEST", limits.perNetwork),
      m_signUps("SIGN_UP_CODE", limits.perAddress),
      m_perAddress("CODE", limits.perAddress),
      m_perMailbox("MAILBOX", limits.perAddress),
      m_notices("NOTICE", limits.notices)
{}

/// Reading first: a refused request must not hold up those who write.
bool CodeRequests::begin(Kind kind, const std::string &emailKey, const std::string &remoteAddress)
{
    const RateLimit &codes = kind == Kind::SignUp ? m_signUps : m_perAddress;
    const std::string network = networkOf(remoteAddress);
    const Instant now = m_clock();
    auto state =
        m_database.read([&](Connection &connection) { return m_perNetwork.look(connection, network, now); });
    if (state.isAhead)
        state = m_database.write([&](Connection &connection) {
            m_perNetwork.settle(connection, network, now);
            return m_perNetwork.look(connection, network, now);
        });
    m_perNetwork.require(state, requestsComplaint);
    return m_database.write([&](Connection &connection) {
        if (m_perNetwork.isSpent(connection, network, state, now))
            m_perNetwork.require(state, requestsComplaint);
        m_perNetwork.spend(connection, network, state, 1, now);
        m_perNetwork.tidy(connection, network, state, now);
        return codes.tryTake(connection, {emailKey}, now);
    });
}

void CodeRequests::forget(Connection &connection, const std::string &remoteAddress) const
{
    m_perNetwork.giveBack(connection, networkOf(remoteAddress), 1, m_clock());
}

bool CodeRequests::mayMail(Connection &connection, const std::string &emailKey, bool verified) const
{
    const std::string mailbox = mailboxOf(emailKey);
    return verified || mailbox == emailKey || m_perMailbox.tryTake(connection, {mailbox}, m_clock());
}

bool CodeRequests::mayNotify(Connection &connection, const std::string &emailKey) const
{
    return m_notices.tryTake(connection, {mailboxOf(emailKey)}, m_clock());
}

} // namespace clockwell::server
